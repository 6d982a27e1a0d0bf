#include "libcamvora/downloadstate.h"

#include "libcamvora/downloadlock.h"

#include <unistd.h>

namespace camvora {

namespace {

std::optional<Download> Record(Store& store, ADDON_SERVICE service) {
    std::optional<Download> record;
    store.Query([&](SQLite::Database& database) { record = FindDownload(database, service); });
    return record;
}

bool SaysRunning(const std::optional<Download>& record) {
    return record && record->status == kDownloadRuns;
}

}  // namespace

bool IsReady(const Download& download) {
    return download.status == kDownloadReady && access(download.info.filePath.c_str(), F_OK) == 0;
}

Download StateOfDownload(Store& store, ADDON_SERVICE service, const std::string& lockFile) {
    auto record = Record(store, service);
    if (SaysRunning(record) && !IsDownloading(lockFile)) {
        record = Record(store, service);  // it may have ended in between
        if (SaysRunning(record)) {
            record->status = kDownloadFailed;
            record->problem = "the download was killed";
        }
    }
    const bool isGone = record && record->status == kDownloadReady && !IsReady(*record);
    return !record || isGone ? Download{} : *record;
}

}  // namespace camvora
