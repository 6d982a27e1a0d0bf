// The key of those who publish releases.
#pragma once

#include <openssl/evp.h>

#include <memory>
#include <string>

namespace camvora {

class FeedKey {
public:
    // Reads the Ed25519 public key in the PEM file at `path`. Throws UpdateFailure when there is none.
    explicit FeedKey(const std::string& path);

    // True when `signature`, as base64, is this key's for the bytes of `text`.
    bool HasSigned(const std::string& text, const std::string& signature) const;

    // Tells this key from others.
    std::string Id() const;

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};

}  // namespace camvora
