#include "client/jsontext.h"

#include <json/reader.h>
#include <json/writer.h>

#include <memory>

namespace client {
namespace {

Json::CharReaderBuilder ExactReader() {
    Json::CharReaderBuilder builder;
    builder["allowComments"] = false;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    builder["rejectDupKeys"] = true;
    return builder;
}

// NOLINTNEXTLINE(misc-no-recursion): the reader limits the depth
void AddLeaves(const Json::Value& value, const std::string& path, std::vector<Leaf>& leaves) {
    if (value.empty() || !(value.isObject() || value.isArray())) {
        leaves.push_back({path.empty() ? "data" : path, LeafText(value)});
        return;
    }
    for (auto it = value.begin(); it != value.end(); ++it) {
        if (value.isArray()) {
            AddLeaves(*it, path + "[" + std::to_string(it.index()) + "]", leaves);
        } else {
            AddLeaves(*it, path.empty() ? it.name() : path + "." + it.name(), leaves);
        }
    }
}

}  // namespace

bool ParseJson(const std::string& text, Json::Value& value) {
    static const Json::CharReaderBuilder builder = ExactReader();
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    try {
        return reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    } catch (const Json::Exception&) {  // nested too deeply
        return false;
    }
}

std::string ToJson(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Json::Value Member(const Json::Value& object, const char* name) {
    return object.isObject() ? object[name] : Json::Value();
}

std::string LeafText(const Json::Value& value) {
    if (value.isNull()) {
        return "";
    }
    return value.isString() ? value.asString() : ToJson(value);
}

std::vector<Leaf> Leaves(const Json::Value& value) {
    std::vector<Leaf> leaves;
    AddLeaves(value, "", leaves);
    return leaves;
}

}  // namespace client
