// What the update client of one service works with.
#pragma once

#include "libcamvora/exchangewatch.h"
#include "libcamvora/releasesconf.h"
#include "platform/services.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <vector>

namespace camvora {

// Why a check or a download failed, in words for people.
class UpdateFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct UpdateSettings {
    ADDON_SERVICE service{};
    std::string shortName;
    ReleasesConf conf;
    std::string installedVersion;  // empty when it is not installed
    std::string mainVersion;       // of the main package
    std::string downloadFolder;
    std::string lockFile;  // of the service's downloads
    std::chrono::milliseconds checkLimit{10000};
    Pace downloadPace{std::chrono::milliseconds(30000), 30 << 10};
    std::vector<std::chrono::milliseconds> pauses{std::chrono::milliseconds(1000),
                                                  std::chrono::milliseconds(2000)};  // between attempts
};

// True for a service with packages: only such a one has releases and downloads.
bool HasReleases(ADDON_SERVICE service);

// The settings of `service` on this appliance. Throws UpdateFailure for one without releases.
UpdateSettings SettingsOf(ADDON_SERVICE service);

// The address of a file of the feed.
std::string FeedAddress(const ReleasesConf& conf, const std::string& fileName);

}  // namespace camvora
