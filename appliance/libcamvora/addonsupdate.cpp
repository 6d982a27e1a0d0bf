#include "libcamvora/downloadend.h"
#include "libcamvora/downloader.h"
#include "libcamvora/downloadstate.h"
#include "libcamvora/releasecheck.h"
#include "libcamvora/store.h"
#include "libcamvora/updatesettings.h"
#include "platform/log.h"
#include "platform/releases.h"

#include <algorithm>
#include <exception>

namespace {

using camvora::TheStore;

void LogFailure(const char* task, ADDON_SERVICE service, const std::exception& failure) {
    CVPrintf(0, nullptr, nullptr, "addonsupdate", __LINE__, __func__, "Failed to %s of %s [%s]\n", task,
             GetServiceStr(service).c_str(), failure.what());
}

// Returns 0, or -1 with one line in the log when `work` throws.
template <typename Work>
int Attempt(const char* task, ADDON_SERVICE service, Work work) {
    try {
        work();
        return 0;
    } catch (const std::exception& failure) {
        LogFailure(task, service, failure);
        return -1;
    }
}

int PercentOf(const camvora::Download& download) {
    const long long percent = download.sizeBytes > 0 ? 100 * download.bytes / download.sizeBytes : 0;
    return static_cast<int>(std::clamp(percent, 0LL, 100LL));
}

camvora::Download DownloadOf(ADDON_SERVICE service) {
    return camvora::HasReleases(service) ? camvora::StateOfDownload(TheStore(), camvora::SettingsOf(service))
                                         : camvora::Download{};
}

}  // namespace

AddonsUpdate::AddonsUpdate(ADDON_SERVICE service) : service_(service) {}

AddonsUpdate::~AddonsUpdate() = default;

int AddonsUpdate::CheckNewRelease(bool& hasNew, std::string& version) {
    return Attempt("check for a new release", service_, [&] {
        const auto release = camvora::CheckRelease(TheStore(), camvora::SettingsOf(service_));
        hasNew = release.has_value();
        version = release ? release->version : "";
    });
}

int AddonsUpdate::Download() {
    return Attempt("download the new release", service_,
                   [this] { camvora::DownloadRelease(TheStore(), camvora::SettingsOf(service_)); });
}

int AddonsUpdate::GetDownloadStatus(std::string& version, int& percent, APP_DOWNLOAD_STATUS& status) {
    return Attempt("read the download", service_, [&] {
        const camvora::Download download = DownloadOf(service_);
        status = download.status;
        if (status != camvora::kNoDownload) {
            version = download.info.version;
            percent = status == camvora::kDownloadReady ? 100 : PercentOf(download);
        }
    });
}

int AddonsUpdate::CancelDownload() {
    return Attempt("cancel the download", service_, [this] {
        if (camvora::HasReleases(service_)) {
            camvora::CancelDownload(TheStore(), camvora::SettingsOf(service_));
        }
    });
}

int AddonsUpdate::ReadDownloadInfoFile(bool& ready, APP_DOWNLOAD_INFO& info) {
    return Attempt("read the last download", service_, [&] {
        const camvora::Download download = DownloadOf(service_);
        ready = download.status == camvora::kDownloadReady;
        if (ready) {
            info = download.info;
        }
    });
}

int AddonsUpdate::CleanDownloadResult() {
    return Attempt("forget the last download", service_, [this] {
        if (camvora::HasReleases(service_)) {
            camvora::CleanDownload(TheStore(), camvora::SettingsOf(service_));
        }
    });
}
