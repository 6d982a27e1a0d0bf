#include "host/jsonparams.h"

#include "host/utf8.h"

#include <json/reader.h>

#include <memory>

namespace host {

namespace {

constexpr int kNestingLimit = 100;

std::unique_ptr<Json::CharReader> StrictReader() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["strictRoot"] = false;  // whether the root is an object is asked afterwards
    builder["stackLimit"] = kNestingLimit;
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

// Returns what is wrong with `text`; empty when it was read into `value`.
std::string ReadJson(const std::string& text, Json::Value& value) {
    thread_local const std::unique_ptr<Json::CharReader> reader = StrictReader();
    std::string problems;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &problems)) {
            return "";
        }
    } catch (const Json::Exception&) {
        return "it is nested too deeply";
    }
    return problems;
}

}  // namespace

std::optional<Reply> ReadParams(const std::string& text, Json::Value& params) {
    if (text.empty()) {
        params = Json::Value(Json::objectValue);
        return std::nullopt;
    }
    if (!IsUtf8(text)) {
        return ReplyFor(FrameworkError::kMalformedJson, "it is not UTF-8 text");
    }
    const std::string problem = ReadJson(text, params);
    if (!problem.empty()) {
        return ReplyFor(FrameworkError::kMalformedJson, problem);
    }
    if (!params.isObject()) {
        return ReplyFor(FrameworkError::kNotAnObject);
    }
    return std::nullopt;
}

}  // namespace host
