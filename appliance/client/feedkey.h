// The keys of a feed: Ed25519, as PEM files.
#pragma once

#include <memory>
#include <string>

struct evp_pkey_st;

namespace client {

// Makes a key pair: the private key in `path`, which only its owner can read, the public one in `path` with
// ".pub" at its end. Throws Failure (kFailed), also when one of the two is there already.
void MakeFeedKey(const std::string& path);

// A private key.
class FeedKey {
public:
    // Reads it. Throws Failure as PlainFile does, and kFailed when it is no such key.
    explicit FeedKey(const std::string& path);

    // The signature of the text's bytes, in base64. Throws Failure (kFailed).
    std::string Sign(const std::string& text) const;

private:
    std::shared_ptr<evp_pkey_st> key_;
};

}  // namespace client
