// Numbers in what clients send.
#pragma once

#include <optional>
#include <string>

namespace host {

// The number, of 0 or more, that `text` is in decimal digits only; nothing when it is none or too large.
std::optional<long long> ParseDecimal(const std::string& text);

}  // namespace host
