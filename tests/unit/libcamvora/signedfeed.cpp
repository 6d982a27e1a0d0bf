#include "signedfeed.h"

#include "libcamvora/base64.h"
#include "platform/files.h"

#include <openssl/pem.h>

#include <array>

FeedSigner::FeedSigner() : key_(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), &EVP_PKEY_free) {}

std::string FeedSigner::PublicKey() const {
    const std::unique_ptr<BIO, decltype(&BIO_free)> pem(BIO_new(BIO_s_mem()), &BIO_free);
    PEM_write_bio_PUBKEY(pem.get(), key_.get());
    std::array<char, 1000> text{};
    const int size = BIO_read(pem.get(), text.data(), static_cast<int>(text.size()));
    return {text.data(), static_cast<std::size_t>(size)};
}

std::string FeedSigner::Index(const Json::Value& payload) const {
    const std::string text = JsonWrite(payload, true);
    std::array<unsigned char, 64> signature{};
    std::size_t size = signature.size();
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> sign(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    EVP_DigestSignInit(sign.get(), nullptr, nullptr, nullptr, key_.get());
    EVP_DigestSign(sign.get(), signature.data(), &size, reinterpret_cast<const unsigned char*>(text.data()),
                   text.size());
    Json::Value index;
    index["payload"] = text;
    index["signature"] = camvora::EncodeBase64(signature.data(), size);
    return JsonWrite(index, true);
}

Json::Value ReleaseEntry(const std::string& version) {
    Json::Value entry;
    entry["version"] = version;
    entry["file"] = "device pack.spk";
    entry["size"] = 5;
    entry["sha256"] = std::string(64, 'a');
    entry["lowestMainVersion"] = "";
    entry["date"] = "2026-03-01";
    entry["notes"] = "Better.\n";
    return entry;
}

Json::Value FeedPayload(int serial, const std::vector<Json::Value>& releases) {
    Json::Value payload;
    payload["service"] = "device_pack";
    payload["serial"] = serial;
    payload["releases"] = Json::Value(Json::arrayValue);
    for (const Json::Value& release : releases) {
        payload["releases"].append(release);
    }
    return payload;
}
