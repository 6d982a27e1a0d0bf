#include "host/accesstoken.h"

#include "host/uniquefd.h"

#include <openssl/crypto.h>

#include <array>
#include <stdexcept>

namespace host {

AccessToken AccessToken::ReadFrom(int fd) {
    const UniqueFd source(fd);
    std::array<char, 1024> buffer{};
    const ssize_t size = read(source.Get(), buffer.data(), buffer.size());
    const std::string text(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
    const std::string token = text.substr(0, text.find_first_of("\r\n"));
    if (token.empty()) {
        throw std::runtime_error("no access token to be read from descriptor " + std::to_string(fd));
    }
    return AccessToken("Bearer " + token);
}

bool AccessToken::IsCarriedBy(const std::string& authorization) const {
    return authorization.size() == expected_.size() &&
           CRYPTO_memcmp(authorization.data(), expected_.data(), expected_.size()) == 0;
}

}  // namespace host
