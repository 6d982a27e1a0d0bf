#include "libcamvora/downloadstates.h"

#include "libcamvora/downloadstate.h"
#include "libcamvora/updatesettings.h"

namespace camvora {

namespace {

std::vector<int> RecordedServices() {
    std::vector<int> services;
    TheStore().Query([&services](SQLite::Database& database) {
        for (const auto& [service, download] : AllDownloads(database)) {
            services.push_back(service);
        }
    });
    return services;
}

}  // namespace

std::vector<DownloadState> DownloadStates() {
    std::vector<DownloadState> states;
    for (const int number : RecordedServices()) {
        const auto service = static_cast<ADDON_SERVICE>(number);
        const Download download = StateOfDownload(TheStore(), SettingsOf(service));
        if (download.status != kNoDownload) {
            states.push_back({number, download.info.version, download.status, download.bytes,
                              download.sizeBytes, download.problem});
        }
    }
    return states;
}

}  // namespace camvora
