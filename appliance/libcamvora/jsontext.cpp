#include "platform/files.h"

#include <json/writer.h>

std::string JsonWrite(const Json::Value& value, bool compact) {
    Json::StreamWriterBuilder builder;
    if (compact) {
        builder["indentation"] = "";
    }
    return Json::writeString(builder, value);
}
