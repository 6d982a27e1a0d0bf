// JSON from and to the texts that tests and journals hold.
#pragma once

#include <json/value.h>

#include <string>

namespace fake {

// The value that `text` says. Throws where it is not JSON.
Json::Value ParseJson(const std::string& text);

// The value on one line, members sorted by name.
std::string WriteJson(const Json::Value& value);

}  // namespace fake
