#include "host/accesstoken.h"

#include "host/requestids.h"
#include "host/uniquefd.h"

#include <openssl/crypto.h>
#include <strings.h>

#include <array>
#include <stdexcept>

namespace host {

namespace {

constexpr char kScheme[] = "Bearer ";
constexpr std::size_t kDrawnDigits = 64;

}  // namespace

AccessToken AccessToken::ReadFrom(int fd) {
    const UniqueFd source(fd);
    std::array<char, 1024> buffer{};
    const ssize_t size = read(source.Get(), buffer.data(), buffer.size());
    const std::string text(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    const std::string token = text.substr(0, text.find_first_of("\r\n"));
    if (token.empty()) {
        throw std::runtime_error("no access token to be read from descriptor " + std::to_string(fd));
    }
    return AccessToken(token);
}

AccessToken AccessToken::Draw() {
    std::string text;
    while (text.size() < kDrawnDigits) {
        text += NewRequestId();
    }
    return AccessToken(text);
}

bool AccessToken::IsCarriedBy(const std::string& authorization) const {
    const std::size_t begin = sizeof(kScheme) - 1;
    return authorization.size() == begin + expected_.size() &&
           strncasecmp(authorization.c_str(), kScheme, begin) == 0 &&
           CRYPTO_memcmp(authorization.data() + begin, expected_.data(), expected_.size()) == 0;
}

}  // namespace host
