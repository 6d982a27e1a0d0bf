#include "libcamvora/downloads.h"
#include "libcamvora/store.h"
#include "platform/log.h"
#include "platform/releases.h"

#include <unistd.h>

#include <exception>

namespace {

// The unpacking uses the file up, the record stays until the add-on is installed.
bool IsThere(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

}  // namespace

AddonsUpdate::AddonsUpdate(ADDON_SERVICE service) : service_(service) {}

AddonsUpdate::~AddonsUpdate() = default;

int AddonsUpdate::ReadDownloadInfoFile(bool& ready, APP_DOWNLOAD_INFO& info) {
    std::optional<camvora::Download> download;
    try {
        camvora::TheStore().Query(
            [&](SQLite::Database& database) { download = camvora::FindDownload(database, service_); });
    } catch (const std::exception& failure) {
        CVPrintf(0, nullptr, nullptr, "addonsupdate", __LINE__, __func__,
                 "Failed to read the last download [%s]\n", failure.what());
        return -1;
    }
    ready = download && download->status == camvora::kDownloadReady && IsThere(download->info.filePath);
    if (ready) {
        info = download->info;
    }
    return 0;
}

int AddonsUpdate::CleanDownloadResult() {
    const bool isForgotten = camvora::TheStore().Write(
        [this](SQLite::Database& database) { camvora::ForgetDownload(database, service_); });
    return isForgotten ? 0 : -1;
}
