// Online downloads: "DownloadStart", "DownloadProgress", "DownloadCancel".
#include "webapi/addons.h"

#include "platform/log.h"
#include "platform/plibc.h"
#include "platform/releases.h"

#include <unistd.h>

namespace {

constexpr int kErrFailed = 400;
constexpr int kStatusReads = 5;
constexpr unsigned kStatusIntervalS = 1;
constexpr APP_DOWNLOAD_STATUS kStatusNone{0};
constexpr APP_DOWNLOAD_STATUS kStatusFailed{4};

struct DownloadState {
    std::string version;
    int percent = 0;
    APP_DOWNLOAD_STATUS status = kStatusNone;
};

// The body of the detached child of "DownloadStart".
[[noreturn]] void RunDetachedDownload(AddonsUpdate& update) noexcept {
    (void)setsid();
    if (update.Download() != 0) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleDownloadStart",
                 "Failed to download device pack.\n");
    }
    _exit(0);
}

// Finds a newer release and starts its download in a process of its own. Returns false when there is none.
bool StartDownload(AddonsUpdate& update) {
    bool hasNew = false;
    std::string version;
    if (update.CheckNewRelease(hasNew, version) != 0) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleDownloadStart",
                 "Failed to check new release.\n");
        return false;
    }
    if (!hasNew) {
        return false;
    }
    const pid_t child = PLIBCProcFork();
    if (child == 0) {
        RunDetachedDownload(update);
    }
    return child > 0;
}

// A download that was just started has no state yet and gets some seconds to have one. Returns false when the
// state cannot be read.
bool ReadState(AddonsUpdate& update, DownloadState& state) {
    for (int reads = 0; reads < kStatusReads; ++reads) {
        if (update.GetDownloadStatus(state.version, state.percent, state.status) != 0) {
            return false;
        }
        if (state.status != kStatusNone) {
            return true;
        }
        sleep(kStatusIntervalS);
    }
    state.status = kStatusFailed;
    return true;
}

}  // namespace

void AddOnsHandler::HandleDownloadStart() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    AddonsUpdate update(static_cast<ADDON_SERVICE>(service));
    if (!StartDownload(update)) {
        SetErrorCode(kErrFailed);
    }
    WriteResponse(Json::Value());
}

void AddOnsHandler::HandleDownloadProgress() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    const std::string name = GetServiceStr(static_cast<ADDON_SERVICE>(service));
    Json::Value result(Json::objectValue);
    AddonsUpdate update(static_cast<ADDON_SERVICE>(service));
    DownloadState state;
    if (ReadState(update, state)) {
        result["version"] = name + " " + state.version;
        result["status"] = state.status;
        result["percent"] = state.percent;
    } else {
        SetErrorCode(kErrFailed);
    }
    WriteResponse(result);
}

void AddOnsHandler::HandleDownloadCancel() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    AddonsUpdate update(static_cast<ADDON_SERVICE>(service));
    if (update.CancelDownload() != 0) {
        SetErrorCode(kErrFailed);
    }
    WriteResponse(Json::Value());
}
