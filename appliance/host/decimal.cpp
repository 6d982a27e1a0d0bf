#include "host/decimal.h"

#include <charconv>
#include <system_error>

namespace host {

std::optional<long long> ParseDecimal(const std::string& text) {
    long long number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool isNumber = !text.empty() && error == std::errc() && stop == end && number >= 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

}  // namespace host
