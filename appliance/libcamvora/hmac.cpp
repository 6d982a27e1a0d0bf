#include "libcamvora/hmac.h"

#include "libcamvora/hextext.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>

namespace camvora {

std::string HmacSha256(const std::string& key, const std::string& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int sizeBytes = 0;
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(), &sizeBytes);
    return HexText(digest.data(), sizeBytes);
}

}  // namespace camvora
