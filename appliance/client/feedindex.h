// A feed's index of one add-on: the file that tells appliances which releases there are.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>
#include <vector>

namespace client {

class FeedKey;

struct FeedRelease {
    std::string version;
    std::string file;  // its name in the folder of the index
    std::uint64_t sizeBytes = 0;
    std::string sha256;             // in hexadecimal
    std::string lowestMainVersion;  // of the main package, on which it works
    std::string date;               // of its first publication, "2026-11-25"
    std::string notes;
};

struct FeedIndex {
    std::string service;     // short name of the add-on
    Json::Int64 serial = 0;  // grows with every publication; 0 before the first
    std::vector<FeedRelease> releases = {};
};

// Where the index of an add-on lies in the folder of a feed.
std::string IndexPath(const std::string& dir, const std::string& service);

// The index that was published last, of the releases only version, date and sha256; whoever signed it. One
// with the serial 0 where there is none. Throws Failure (kFailed) when the file is no index.
FeedIndex ReadFeedIndex(const std::string& dir, const std::string& service);

// Puts the signed index in the place of the last one, at once. Throws Failure (kFailed); the last one stays
// then.
void WriteFeedIndex(const std::string& dir, const FeedIndex& index, const FeedKey& key);

// What is signed in it.
Json::Value FeedIndexDocument(const FeedIndex& index);

}  // namespace client
