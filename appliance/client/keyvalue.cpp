#include "client/keyvalue.h"

#include <algorithm>

namespace client {
namespace {

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    const std::size_t last = text.find_last_not_of(kBlanks);
    return text.substr(first, last + 1 - first);
}

// What stands between the quotes; a value without both quotes is taken as it is.
std::string_view Unquoted(std::string_view value) {
    const bool isQuoted = !value.empty() && value.front() == '"';
    const std::size_t end = isQuoted ? value.find('"', 1) : std::string_view::npos;
    return end == std::string_view::npos ? value : value.substr(1, end - 1);
}

}  // namespace

std::optional<std::string> ValueOf(std::string_view text, std::string_view key, std::size_t limitBytes) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const std::size_t equals = line.find('=');
        if (equals != std::string_view::npos && Trimmed(line.substr(0, equals)) == key) {
            const std::string_view value = Unquoted(Trimmed(line.substr(equals + 1)));
            return std::string(value.substr(0, std::min(value.find('\0'), limitBytes)));
        }
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return std::nullopt;
}

std::string KeyOf(std::string_view line) {
    const std::size_t equals = line.find('=');
    return std::string(equals == std::string_view::npos ? "" : Trimmed(line.substr(0, equals)));
}

bool IsRemark(std::string_view line) {
    const std::string_view text = Trimmed(line);
    return text.empty() || text.front() == '#';
}

std::string KeyValueLine(const std::string& key, const std::string& value) {
    return key + "=\"" + value + "\"\n";
}

}  // namespace client
