// Updates: "GetUpdateInfo", "CheckUpdateInfo", "SetAutoUpdate", "Update".
#include "webapi/addons.h"

#include "addons/addonpackage.h"
#include "addons/addonsservice.h"
#include "addons/paths.h"
#include "addons/scopedlockfile.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/releases.h"
#include "platform/settings.h"

namespace {

constexpr int kErrFailed = 400;
constexpr int kAddOnsLockWaitMs = 30000;
constexpr int kUpdateLockProbeMs = 100;
constexpr int kStatusRunning = 1;
constexpr int kStatusReady = 2;
constexpr int kStatusFailed = 4;

// What "CheckUpdateInfo" answers.
enum class UpdateState : int {
    kUnknown = 0,  // another check did not end in time
    kNone = 1,
    kAvailable = 2,
    kDownloaded = 3,
    kDownloading = 4,
    kDownloadFailed = 5,
    kUpdating = 6,
    kFailed = 7,
};

// How many of the add-ons have a newer release. What the first check has found counts for the second add-on
// too where its own check does not say otherwise.
int CountNewReleases(AddonsUpdate& devicePack) {
    bool hasNew = false;
    std::string version;
    (void)devicePack.CheckNewRelease(hasNew, version);
    int count = hasNew ? 1 : 0;
    if (IsNVRModel(GetHxModelName(""))) {
        AddonsUpdate localDisplay(ADDON_SERVICE_LOCAL_DISPLAY);
        (void)localDisplay.CheckNewRelease(hasNew, version);
        count += hasNew ? 1 : 0;
    }
    return count;
}

bool IsUpdating(ADDON_SERVICE service) {
    return !ScopedLockFile(GetUpdateLockFile(service), kUpdateLockProbeMs).IsHeld();
}

UpdateState CheckRelease(AddonsUpdate& update) {
    const ScopedLockFile lock(kAddOnsLock, kAddOnsLockWaitMs);
    if (!lock.IsHeld()) {
        return UpdateState::kUnknown;
    }
    bool hasNew = false;
    std::string version;
    if (update.CheckNewRelease(hasNew, version) != 0) {
        return UpdateState::kFailed;
    }
    return hasNew ? UpdateState::kAvailable : UpdateState::kNone;
}

UpdateState FindUpdateState(ADDON_SERVICE service, AddonsUpdate& update) {
    if (FindAddOnPackage(service) == nullptr) {
        return UpdateState::kNone;
    }
    if (IsUpdating(service)) {
        return UpdateState::kUpdating;
    }
    std::string version;
    int percent = 0;
    APP_DOWNLOAD_STATUS status{};
    if (update.GetDownloadStatus(version, percent, status) != 0) {
        return UpdateState::kFailed;
    }
    switch (static_cast<int>(status)) {
        case kStatusRunning:
            return UpdateState::kDownloading;
        case kStatusReady:
            return UpdateState::kDownloaded;
        case kStatusFailed:
            return UpdateState::kDownloadFailed;
        default:
            return CheckRelease(update);
    }
}

}  // namespace

void AddOnsHandler::HandleGetUpdateInfo() {
    int count = 0;
    AddonsUpdate devicePack(ADDON_SERVICE_DEVICE_PACK);
    {
        const ScopedLockFile lock(kAddOnsLock, kAddOnsLockWaitMs);
        if (lock.IsHeld()) {
            count = CountNewReleases(devicePack);
        }
    }
    Json::Value data(Json::objectValue);
    data["newUpdateCnt"] = count;
    m_pResponse->SetSuccess(data);
}

void AddOnsHandler::HandleCheckUpdateInfo() {
    const auto service = static_cast<ADDON_SERVICE>(m_pRequest->GetParam("service", 0).asInt());
    AddonsUpdate update(service);
    Json::Value data(Json::objectValue);
    data["status"] = static_cast<int>(FindUpdateState(service, update));
    m_pResponse->SetSuccess(data);
}

void AddOnsHandler::HandleSetAutoUpdate() {
    const bool enable = m_pRequest->GetParam("blEnable", "").asBool();
    const int service = m_pRequest->GetParam("service", 0).asInt();
    AddOns addOns(ADDON_SERVICE_NONE);
    addOns.InitService(static_cast<ADDON_SERVICE>(service));
    if (addOns.SetAutoUpdate(enable) == 0) {
        m_pResponse->SetSuccess(Json::Value());
    } else {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, __func__, "[%s] Failed to set auto-update.\n",
                 itos(service).c_str());
        m_pResponse->SetError(kErrFailed, Json::Value());
    }
}

void AddOnsHandler::HandlePkgUpdate() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    const std::string path = m_pRequest->GetParam("filePath", "").asString();
    AddOns addOns(ADDON_SERVICE_NONE);
    addOns.InitService(static_cast<ADDON_SERVICE>(service));
    if (addOns.ExecuteUpdate(path) == 0) {
        m_pResponse->SetSuccess(Json::Value());
    } else {
        m_pResponse->SetError(kErrFailed, Json::Value());
    }
}
