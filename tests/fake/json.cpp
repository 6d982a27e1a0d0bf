#include "fake/json.h"

#include <json/reader.h>
#include <json/writer.h>

#include <sstream>

namespace fake {

Json::Value ParseJson(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

std::string WriteJson(const Json::Value& value) {
    Json::StreamWriterBuilder compact;
    compact["indentation"] = "";
    return Json::writeString(compact, value);
}

}  // namespace fake
