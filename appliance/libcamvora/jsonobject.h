// JSON objects from texts and files.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <string_view>

namespace camvora {

// The JSON object that `text` is; nothing when it is none.
std::optional<Json::Value> ParseJsonObject(std::string_view text);

// Reads the JSON object in the file at `path` into `object`. False, with one line in the diagnostic log and
// `object` untouched, when there is no such file or its content is no JSON object.
bool ReadJsonObject(const std::string& path, Json::Value& object);

}  // namespace camvora
