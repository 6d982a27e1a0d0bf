// The indexes of a feed, and the key with which they are signed.
#pragma once

#include <json/value.h>
#include <openssl/evp.h>

#include <memory>
#include <string>
#include <vector>

class FeedSigner {
public:
    FeedSigner();

    std::string PublicKey() const;  // as PEM

    // The index with that payload.
    std::string Index(const Json::Value& payload) const;

private:
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
};

// A release with that version, as a payload has it; it lacks nothing.
Json::Value ReleaseEntry(const std::string& version);

// The payload with these releases.
Json::Value FeedPayload(int serial, const std::vector<Json::Value>& releases);
