// Addresses on the web.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace camvora {

struct WebUrl {
    std::string origin;  // "http://HOST:PORT"
    std::string path;    // from the first "/", with the query
};

// Takes an http or https address apart; nothing when `text` is none.
std::optional<WebUrl> ParseWebUrl(std::string_view text);

// The address to which a redirection leads from `base`. `header` is its location as the HTTP library gives
// it, which undoes the escapes in headers.
std::string ResolveLocation(const WebUrl& base, const std::string& header);

// The name of a file as it stands in an address.
std::string PercentEncoded(std::string_view name);

}  // namespace camvora
