// The index of a feed: which releases of an add-on there are. One JSON object, signed as a whole:
//
//   {"payload": "{\"service\":\"device_pack\",\"serial\":1764094000,\"releases\":[...]}",
//    "signature": "<base64 of the Ed25519 signature of the payload's bytes>"}
#pragma once

#include "libcamvora/feedkey.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace camvora {

inline constexpr std::size_t kFeedIndexLimitBytes = 256 << 10;

struct Release {
    std::string version;
    std::string file;  // name of the package file, beside the index
    long long sizeBytes = 0;
    std::string sha256;             // lower-case hex
    std::string lowestMainVersion;  // of the main package; may be empty
    std::string date;
    std::string notes;
};

struct FeedIndex {
    long long serial = 0;  // grows with every index that is published
    std::vector<Release> releases;
};

// Takes the index of the add-on `shortName` from `text`. Throws UpdateFailure unless `key` has signed it and
// all that is in it is as it should be.
FeedIndex ReadFeedIndex(const std::string& text, const FeedKey& key, const std::string& shortName);

// The newest release that is newer than `installedVersion` (any, when that is empty) and that the main
// package of `mainVersion` can take; nothing when there is none.
std::optional<Release> ChooseRelease(const FeedIndex& index, const std::string& installedVersion,
                                     const std::string& mainVersion);

}  // namespace camvora
