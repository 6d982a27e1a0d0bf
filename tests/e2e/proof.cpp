#include "e2e/proof.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <iomanip>
#include <sstream>

namespace e2e {

std::string Proof(const std::string& secret, const std::string& timestamp) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
         reinterpret_cast<const unsigned char*>(timestamp.data()), timestamp.size(), digest.data(), &size);
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (unsigned i = 0; i < size; ++i) {
        text << std::setw(2) << int{digest[i]};
    }
    return text.str();
}

}  // namespace e2e
