#include "client/filedigest.h"

#include "client/failure.h"
#include "client/plainfile.h"

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <vector>

namespace client {
namespace {

constexpr std::size_t kDigestedBytes = 64UL * 1024;

std::string Hex(const unsigned char* bytes, unsigned int sizeBytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (unsigned int at = 0; at < sizeBytes; ++at) {
        text += kDigits[bytes[at] >> 4U];
        text += kDigits[bytes[at] & 0xFU];
    }
    return text;
}

}  // namespace

std::string Sha256Of(const PlainFile& file) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    bool isGood = EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1;
    std::vector<char> piece(kDigestedBytes);
    std::uint64_t offset = 0;
    for (std::size_t size = 1; isGood && size > 0; offset += size) {
        size = file.ReadAt(offset, piece.data(), piece.size());
        isGood = EVP_DigestUpdate(context.get(), piece.data(), size) == 1;
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int digestBytes = 0;
    if (!isGood || EVP_DigestFinal_ex(context.get(), digest.data(), &digestBytes) != 1) {
        throw Failure(ExitStatus::kFailed, "The SHA-256 of a file could not be made");
    }
    return Hex(digest.data(), digestBytes);
}

}  // namespace client
