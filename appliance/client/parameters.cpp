#include "client/parameters.h"

#include "client/failure.h"
#include "client/jsontext.h"
#include "client/terminaltext.h"

#include <regex>

namespace client {
namespace {

// The JSON reader also takes "007", "+1" and "-" for numbers.
bool IsJsonNumber(const std::string& text) {
    static const std::regex form(R"(\s*-?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)?\s*)");
    return std::regex_match(text, form);
}

Json::Value ParseValue(const std::string& text) {
    Json::Value value;
    const bool isJson = ParseJson(text, value);
    return isJson && (!value.isNumeric() || IsJsonNumber(text)) ? value : Json::Value(text);
}

}  // namespace

Json::Value ParseParameters(const std::vector<std::string>& words) {
    Json::Value params(Json::objectValue);
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw Failure(ExitStatus::kUsage, "\"" + word + "\" is not of the form name=value");
        }
        if (!IsUtf8(word)) {
            throw Failure(ExitStatus::kUsage, "\"" + word + "\" is not UTF-8");
        }
        const std::string name = word.substr(0, equals);
        if (params.isMember(name)) {
            throw Failure(ExitStatus::kUsage, "The parameter \"" + name + "\" is given twice");
        }
        params[name] = ParseValue(word.substr(equals + 1));
    }
    return params;
}

}  // namespace client
