// JSON texts of what clients sent.
#pragma once

#include <json/value.h>

#include <string>

namespace host {

// The value as JSON text on one line. Bytes that are no text stay as they are, to be refused by whoever reads
// it.
std::string ToRawJsonText(const Json::Value& value);

}  // namespace host
