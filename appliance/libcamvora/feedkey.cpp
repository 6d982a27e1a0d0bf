#include "libcamvora/feedkey.h"

#include "libcamvora/base64.h"
#include "libcamvora/hextext.h"
#include "libcamvora/plainfile.h"
#include "libcamvora/updatesettings.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include <array>

namespace camvora {

namespace {

constexpr std::size_t kFileLimitBytes = 64 << 10;
constexpr std::size_t kKeySizeBytes = 32;
constexpr std::size_t kSignatureSizeBytes = 64;

EVP_PKEY* ReadKey(const std::string& path) {
    const auto pem = ReadPlainFile(path.c_str(), kFileLimitBytes);
    if (!pem) {
        return nullptr;
    }
    const std::unique_ptr<BIO, decltype(&BIO_free)> text(
        BIO_new_mem_buf(pem->data(), static_cast<int>(pem->size())), &BIO_free);
    EVP_PKEY* key = PEM_read_bio_PUBKEY(text.get(), nullptr, nullptr, nullptr);
    ERR_clear_error();
    return key;
}

}  // namespace

FeedKey::FeedKey(const std::string& path) : key_(ReadKey(path), &EVP_PKEY_free) {
    if (key_ == nullptr || EVP_PKEY_id(key_.get()) != EVP_PKEY_ED25519) {
        throw UpdateFailure("no Ed25519 public key is in " + path);
    }
}

bool FeedKey::HasSigned(const std::string& text, const std::string& signature) const {
    std::array<unsigned char, kSignatureSizeBytes> bytes{};
    if (DecodedSize(signature) != kSignatureSizeBytes || !DecodeBase64(signature, bytes.data())) {
        return false;
    }
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> check(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    const bool isGood =
        EVP_DigestVerifyInit(check.get(), nullptr, nullptr, nullptr, key_.get()) == 1 &&
        EVP_DigestVerify(check.get(), bytes.data(), bytes.size(),
                         reinterpret_cast<const unsigned char*>(text.data()), text.size()) == 1;
    ERR_clear_error();
    return isGood;
}

std::string FeedKey::Id() const {
    std::array<unsigned char, kKeySizeBytes> bytes{};
    std::size_t size = bytes.size();
    (void)EVP_PKEY_get_raw_public_key(key_.get(), bytes.data(), &size);
    return HexText(bytes.data(), size);
}

}  // namespace camvora
