// The reader of key-value files. A line is key=value or key="value"; blanks around both parts, comment lines
// with "#" and a final CR do not count. Of several lines with the same key the first one holds.
#include "libcamvora/keyvalue.h"

#include "libcamvora/plainfile.h"
#include "platform/plibc.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace {

constexpr std::size_t kFileLimitBytes = 1UL << 20;

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// What stands between the quotes; a value without both quotes is taken as it is.
std::string_view Unquoted(std::string_view value) {
    if (value.empty() || value.front() != '"') {
        return value;
    }
    const std::size_t end = value.find('"', 1);
    return end == std::string_view::npos ? value : value.substr(1, end - 1);
}

std::optional<std::string_view> ValueInLine(std::string_view line, std::string_view key) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || Trimmed(line.substr(0, equals)) != key) {
        return std::nullopt;  // a comment, too: its "#" makes another key
    }
    const std::string_view value = Unquoted(Trimmed(line.substr(equals + 1)));
    return value.substr(0, value.find('\0'));
}

std::optional<std::string_view> ValueInText(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (const auto value = ValueInLine(line, key)) {
            return value;
        }
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return std::nullopt;
}

std::optional<std::string> ValueInFile(const char* path, const char* key) {
    const auto text = camvora::ReadPlainFile(path, kFileLimitBytes);
    const auto value = text ? ValueInText(*text, key) : std::nullopt;
    return value ? std::optional(std::string(*value)) : std::nullopt;
}

}  // namespace

namespace camvora {

std::string TextOfKey(const char* path, const char* key, const std::string& defaultValue) {
    const auto value = ValueInFile(path, key);
    return value && !value->empty() ? *value : defaultValue;
}

long long NumberOfKey(const char* path, const char* key, long long defaultValue) {
    const std::string text = TextOfKey(path, key, "");
    const char* end = text.data() + text.size();
    long long number = 0;
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number > 0 ? number : defaultValue;
}

}  // namespace camvora

int PLIBCFileGetKeyValue(const char* path, const char* key, char* buffer, int bufferSize, int /*flags*/) {
    if (path == nullptr || key == nullptr || buffer == nullptr || bufferSize <= 0) {
        return -1;
    }
    buffer[0] = '\0';
    const auto value = ValueInFile(path, key);
    if (!value) {
        return -1;
    }
    const std::size_t length = value->copy(buffer, static_cast<std::size_t>(bufferSize) - 1);
    buffer[length] = '\0';
    return static_cast<int>(length);
}
