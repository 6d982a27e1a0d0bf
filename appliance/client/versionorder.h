// The order of versions such as "2.1.0-0153", as the appliance has it.
#pragma once

#include <string_view>

namespace client {

// True when `version` is `minimum` or newer. Versions are compared piece by piece, split at "." and "-";
// missing pieces count as 0. Numbers are compared as numbers, other pieces as texts, and any number is newer
// than any other piece.
bool IsAtLeast(std::string_view version, std::string_view minimum);

}  // namespace client
