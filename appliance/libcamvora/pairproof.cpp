#include "libcamvora/pairproof.h"

#include "libcamvora/hmac.h"

#include <openssl/crypto.h>

#include <charconv>
#include <cstdint>

namespace camvora {

namespace {

constexpr std::uint64_t kWindowS = 60;
constexpr std::size_t kProofLength = 64;

bool IsFresh(const std::string& timestamp, std::time_t now) {
    std::uint64_t made = 0;
    const char* const end = timestamp.data() + timestamp.size();
    const auto [parsedEnd, failure] = std::from_chars(timestamp.data(), end, made);
    if (failure != std::errc() || parsedEnd != end) {
        return false;
    }
    const auto present = static_cast<std::uint64_t>(now);
    return (made > present ? made - present : present - made) <= kWindowS;
}

}  // namespace

std::string PairProof(const std::string& secret, const std::string& timestamp) {
    return HmacSha256(secret, timestamp);
}

bool IsProofOfPair(const std::vector<std::string>& secrets, const std::string& proof,
                   const std::string& timestamp, std::time_t now) {
    if (proof.size() != kProofLength || !IsFresh(timestamp, now)) {
        return false;
    }
    bool match = false;
    for (const std::string& secret : secrets) {
        const std::string expected = PairProof(secret, timestamp);
        const bool equal = expected.size() == kProofLength &&
                           CRYPTO_memcmp(expected.data(), proof.data(), kProofLength) == 0;
        match |= equal && !secret.empty();
    }
    return match;
}

}  // namespace camvora
