#include "client/feedkey.h"

#include "client/failure.h"
#include "client/newfile.h"
#include "client/plainfile.h"

#include <openssl/evp.h>
#include <openssl/pem.h>

#include <array>
#include <filesystem>

namespace client {
namespace {

namespace fs = std::filesystem;

constexpr char kPublicEnd[] = ".pub";
constexpr std::size_t kKeyLimitBytes = 16UL * 1024;
constexpr std::size_t kSignatureBytes = 64;
constexpr std::size_t kSignatureChars = (kSignatureBytes + 2) / 3 * 4;

using Memory = std::unique_ptr<BIO, decltype(&BIO_free)>;

Failure KeyFailure(const std::string& path, const std::string& why) {
    return {ExitStatus::kFailed, path + " " + why};
}

std::string TextIn(const Memory& memory) {
    char* text = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(size)};
}

std::string PrivateText(EVP_PKEY* key) {
    const Memory memory(BIO_new(BIO_s_mem()), BIO_free);
    (void)PEM_write_bio_PKCS8PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return TextIn(memory);
}

std::string PublicText(EVP_PKEY* key) {
    const Memory memory(BIO_new(BIO_s_mem()), BIO_free);
    (void)PEM_write_bio_PUBKEY(memory.get(), key);
    return TextIn(memory);
}

void WriteNew(const std::string& path, NewFile::Readers readers, const std::string& text) {
    NewFile file(path, readers);
    file.Write(text);
    file.Finish();
}

}  // namespace

void MakeFeedKey(const std::string& path) {
    const std::string publicPath = path + kPublicEnd;
    for (const std::string& name : {path, publicPath}) {
        if (fs::exists(fs::symlink_status(name))) {
            throw KeyFailure(name, "is there already; a key is not written over");
        }
    }
    const std::shared_ptr<EVP_PKEY> key(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), EVP_PKEY_free);
    if (!key) {
        throw Failure(ExitStatus::kFailed, "The key could not be made");
    }
    WriteNew(path, NewFile::Readers::kOwner, PrivateText(key.get()));
    WriteNew(publicPath, NewFile::Readers::kAll, PublicText(key.get()));
}

FeedKey::FeedKey(const std::string& path) {
    const std::string text = PlainFile(path).Text(kKeyLimitBytes);
    const Memory memory(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), BIO_free);
    key_.reset(PEM_read_bio_PrivateKey(memory.get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
    if (!key_ || EVP_PKEY_get_id(key_.get()) != EVP_PKEY_ED25519) {
        throw KeyFailure(path, "is no private key of a feed; \"camvoractl feed key\" makes one");
    }
}

std::string FeedKey::Sign(const std::string& text) const {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    std::array<unsigned char, kSignatureBytes> signature{};
    std::size_t size = signature.size();
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    if (EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get()) != 1 ||
        EVP_DigestSign(context.get(), signature.data(), &size, bytes, text.size()) != 1) {
        throw Failure(ExitStatus::kFailed, "The index could not be signed");
    }
    std::array<unsigned char, kSignatureChars + 1> base64{};
    const int length = EVP_EncodeBlock(base64.data(), signature.data(), static_cast<int>(size));
    return {base64.begin(), base64.begin() + length};
}

}  // namespace client
