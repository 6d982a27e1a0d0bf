#include "libcamvora/downloadstate.h"

#include "libcamvora/downloadlock.h"
#include "platform/releases.h"

#include <unistd.h>

namespace camvora {

namespace {

bool SaysRunning(const std::optional<Download>& record) {
    return record && record->status == kDownloadRuns;
}

}  // namespace

std::optional<Download> LastDownload(Store& store, ADDON_SERVICE service) {
    std::optional<Download> last;
    store.Query([&](SQLite::Database& database) { last = FindDownload(database, service); });
    return last;
}

bool IsReady(const Download& download, const std::string& installedVersion) {
    const bool isNewer = installedVersion.empty() ||
                         AddonsUpdate::IsVersionNewer(download.info.version, installedVersion, false);
    return download.status == kDownloadReady && isNewer && access(download.info.filePath.c_str(), F_OK) == 0;
}

Download StateOfDownload(Store& store, const UpdateSettings& settings) {
    auto record = LastDownload(store, settings.service);
    if (SaysRunning(record) && !IsDownloading(settings.lockFile)) {
        record = LastDownload(store, settings.service);  // it may have ended in between, or another begun
        if (SaysRunning(record) && !IsDownloading(settings.lockFile)) {
            record->status = kDownloadFailed;
            record->problem = "the download was killed";
        }
    }
    const bool isGone =
        record && record->status == kDownloadReady && !IsReady(*record, settings.installedVersion);
    return !record || isGone ? Download{} : *record;
}

}  // namespace camvora
