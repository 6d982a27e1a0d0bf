// Key-value texts: a package's INFO and conf, and the appliance's own files. A line is key="value" or
// key=value; blanks around both parts, lines with "#" in front and a CR at the end do not count. Of several
// lines with the same key the first one holds.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace client {

inline constexpr std::size_t kValueLimitBytes = 255;              // the appliance drops what goes beyond
inline constexpr std::size_t kKeyFileLimitBytes = 1024UL * 1024;  // the appliance reads no larger file

// The value of `key` in `text` as the appliance reads it; nothing when there is no such line.
std::optional<std::string> ValueOf(std::string_view text, std::string_view key,
                                   std::size_t limitBytes = kValueLimitBytes);

// The key of a line; empty where there is none.
std::string KeyOf(std::string_view line);

// True for a line that is no more than blanks or a comment.
bool IsRemark(std::string_view line);

// The line, with its end, that gives `key` that value. The value has no quote, line end or NUL.
std::string KeyValueLine(const std::string& key, const std::string& value);

}  // namespace client
