// The factory's add-ons: "Restore".
#include "webapi/addons.h"

#include "addons/announcement.h"
#include "addons/paths.h"
#include "addons/servicecontrol.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/notify.h"
#include "platform/plibc.h"
#include "platform/services.h"

namespace {

bool HasFactoryCopy(const char* place) {
    return IsExistDir(std::string(place) + kFactorySuffix);
}

// The whole main package is stopped meanwhile.
void RestoreDevicePack() {
    (void)PLIBCExec(kStartScript, "stop");
    (void)PLIBCExec(kRestoreScript);
    (void)PLIBCExec(kStartScript, "start");
}

void RestoreLocalDisplay() {
    const bool wasRunning = IsServiceRunning(ADDON_SERVICE_LOCAL_DISPLAY);
    if (wasRunning) {
        (void)ChangeServiceStatus(ADDON_SERVICE_LOCAL_DISPLAY, CONTROL_ACTION_STOP);
        (void)DaemonControl::KillDaemon(ADDON_SERVICE_LOCAL_DISPLAY);
    }
    (void)PLIBCExec(kLocalDisplayScript, "Restore");
    if (wasRunning) {
        (void)DaemonControl::RunDaemon(ADDON_SERVICE_LOCAL_DISPLAY);
        (void)ChangeServiceStatus(ADDON_SERVICE_LOCAL_DISPLAY, CONTROL_ACTION_START);
    }
}

void Restore(int service) {
    if (service == ADDON_SERVICE_DEVICE_PACK) {
        if (HasFactoryCopy(kDevicePackPlace)) {
            RestoreDevicePack();
        }
    } else if (service == ADDON_SERVICE_LOCAL_DISPLAY) {
        if (HasFactoryCopy(kLocalDisplayPlace)) {
            RestoreLocalDisplay();
        }
    } else {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleRestore", "Invalid service type\n");
    }
}

}  // namespace

void AddOnsHandler::HandleRestore() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    const std::string serviceName = m_pRequest->GetParam("serviceName", "").asString();
    const std::string description = m_pRequest->GetParam("description", "").asString();
    Restore(service);
    CVClientNotify::Notify(kNotifyAddOns, itos(service), itos(CONTROL_ACTION_UPDATE), "");
    CVLog(kLogAddOns, 0, serviceName, description, "");
    m_pResponse->SetSuccess(Json::Value());
}
