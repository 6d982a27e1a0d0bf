// A service's description in plain words, the same in every command that shows services.
#pragma once

#include "client/terminal.h"

#include <json/value.h>

#include <cstddef>
#include <string>
#include <vector>

namespace client {

// What the fields are called, in the order of FieldWords.
std::vector<std::string> FieldLabels();

// The fields of `info`, the appliance's description of a service. Missing ones are empty; a value of an
// unexpected type is shown as it is.
std::vector<std::string> FieldWords(const Json::Value& info);

// The field of the recorded state, and its colour.
inline constexpr std::size_t kStatusField = 4;
Colour StatusColour(const Json::Value& info);

}  // namespace client
