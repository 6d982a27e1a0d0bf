#include "host/consolesessions.h"

#include "host/cookies.h"
#include "host/decimal.h"

#include "libcamvora/hextext.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <optional>

namespace host {

namespace {

constexpr char kNamePrefix[] = "camvora-session-";
constexpr std::size_t kNameDigits = 8;

}  // namespace

ConsoleSessions::ConsoleSessions(const std::string& token)
    : token_(token), name_(kNamePrefix + Proof("name of the cookie").substr(0, kNameDigits)) {}

std::string ConsoleSessions::Begin(std::time_t now) const {
    const std::string end = std::to_string(now + kLifeS);
    return Cookie(end + "." + Proof("session until " + end), kLifeS);
}

std::string ConsoleSessions::End() const {
    return Cookie("", 0);
}

bool ConsoleSessions::IsCarriedBy(const std::string& cookies, std::time_t now) const {
    const auto all = ParseCookies(cookies);
    const auto session = all.find(name_);
    if (session == all.end()) {
        return false;
    }
    const std::size_t dot = session->second.find('.');
    const std::string end = session->second.substr(0, dot);
    const std::string proof = dot == std::string::npos ? "" : session->second.substr(dot + 1);
    const std::string expected = Proof("session until " + end);
    const std::optional<long long> endS = ParseDecimal(end);
    return proof.size() == expected.size() &&
           CRYPTO_memcmp(proof.data(), expected.data(), expected.size()) == 0 && endS && *endS > now;
}

std::string ConsoleSessions::Proof(const std::string& text) const {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int sizeBytes = 0;
    HMAC(EVP_sha256(), token_.data(), static_cast<int>(token_.size()),
         reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(), &sizeBytes);
    return camvora::HexText(digest.data(), sizeBytes);
}

std::string ConsoleSessions::Cookie(const std::string& value, std::time_t lifeS) const {
    return name_ + "=" + value + "; Path=/; Max-Age=" + std::to_string(lifeS) + "; HttpOnly; SameSite=Strict";
}

}  // namespace host
