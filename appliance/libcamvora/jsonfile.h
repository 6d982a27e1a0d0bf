// Reading configuration in JSON.
#pragma once

#include <json/value.h>

#include <string>

namespace camvora {

// Reads the JSON object in the file at `path` into `object`. False, with one line in the diagnostic log and
// `object` untouched, when there is no such file or its content is no JSON object.
bool ReadJsonObject(const std::string& path, Json::Value& object);

}  // namespace camvora
