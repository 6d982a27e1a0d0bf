#include "libcamvora/weburl.h"

#include "libcamvora/hextext.h"

#include <algorithm>
#include <iterator>

namespace camvora {

namespace {

constexpr std::string_view kSchemes[] = {"http://", "https://"};
constexpr std::size_t kPortDigits = 5;

bool StartsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

// No address holds blanks, control characters or bytes beyond ASCII.
bool IsPrintable(char c) {
    return c > ' ' && c < '\x7f';
}

std::string Escaped(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return "%" + HexText(&byte, 1);
}

bool IsUnreserved(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("-._~").find(c) != std::string_view::npos;
}

// "HOST" or "HOST:PORT"; the host may be an IPv6 address in brackets.
bool IsHost(std::string_view text) {
    const std::size_t colon = text.find(':', text.rfind(']') + 1);
    const std::string_view host = text.substr(0, colon);
    if (host.empty() || text.find('@') != std::string_view::npos) {
        return false;
    }
    const std::string_view port = colon == std::string_view::npos ? "80" : text.substr(colon + 1);
    return !port.empty() && port.size() <= kPortDigits &&
           port.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

std::optional<WebUrl> ParseWebUrl(std::string_view text) {
    const auto* const scheme = std::find_if(std::begin(kSchemes), std::end(kSchemes),
                                            [text](std::string_view s) { return StartsWith(text, s); });
    if (scheme == std::end(kSchemes) || !std::all_of(text.begin(), text.end(), IsPrintable)) {
        return std::nullopt;
    }
    text = text.substr(0, text.find('#'));
    const std::size_t pathAt = std::min(text.find_first_of("/?", scheme->size()), text.size());
    if (!IsHost(text.substr(scheme->size(), pathAt - scheme->size()))) {
        return std::nullopt;
    }
    const std::string path(text.substr(pathAt));
    return WebUrl{std::string(text.substr(0, pathAt)), StartsWith(path, "/") ? path : "/" + path};
}

std::string ResolveLocation(const WebUrl& base, const std::string& header) {
    std::string location;
    for (const char c : header) {
        location += IsPrintable(c) ? std::string(1, c) : Escaped(c);
    }
    if (location.find("://") < location.find_first_of("/?")) {
        return location;
    }
    if (StartsWith(location, "//")) {
        return base.origin.substr(0, base.origin.find("//")) + location;
    }
    if (StartsWith(location, "/")) {
        return base.origin + location;
    }
    const std::string path = base.path.substr(0, base.path.find('?'));
    const std::string kept = StartsWith(location, "?") ? path : path.substr(0, path.rfind('/') + 1);
    return base.origin + kept + location;
}

std::string PercentEncoded(std::string_view name) {
    std::string encoded;
    for (const char c : name) {
        encoded += IsUnreserved(c) ? std::string(1, c) : Escaped(c);
    }
    return encoded;
}

}  // namespace camvora
