#include "libcamvora/releasesconf.h"

#include "libcamvora/keyvalue.h"
#include "libcamvora/paths.h"

namespace camvora {

namespace {

constexpr long long kMib = 1LL << 20;
constexpr long long kDefaultLimitMib = 2048;

}  // namespace

ReleasesConf ReadReleasesConf(const char* path) {
    return {TextOfKey(path, "feed_url", ""), TextOfKey(path, "feed_key", kDefaultFeedKey),
            NumberOfKey(path, "download_size_limit_mib", kDefaultLimitMib) * kMib};
}

}  // namespace camvora
