#include "host/jsontext.h"

#include <json/writer.h>

namespace host {

std::string ToRawJsonText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

}  // namespace host
