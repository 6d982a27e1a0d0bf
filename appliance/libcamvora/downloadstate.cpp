#include "libcamvora/downloadstate.h"

#include "libcamvora/downloadlock.h"

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

bool IsReady(const Download& download) {
    return download.status == kDownloadReady && access(download.info.filePath.c_str(), F_OK) == 0;
}

Download StateOfDownload(Store& store, ADDON_SERVICE service, const std::string& lockFile) {
    auto record = LastDownload(store, service);
    if (SaysRunning(record) && !IsDownloading(lockFile)) {
        record = LastDownload(store, service);  // it may have ended in between, or another begun
        if (SaysRunning(record) && !IsDownloading(lockFile)) {
            record->status = kDownloadFailed;
            record->problem = "the download was killed";
        }
    }
    const bool isGone = record && record->status == kDownloadReady && !IsReady(*record);
    return !record || isGone ? Download{} : *record;
}

}  // namespace camvora
