// Control of services: "Enable", "Disable", "Restart", "CheckEnableDone".
#include "webapi/addons.h"

#include "addons/addonsservice.h"
#include "addons/paths.h"
#include "platform/log.h"
#include "platform/plibc.h"
#include "platform/services.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <iterator>

namespace {

constexpr int kErrFailed = 400;
constexpr unsigned kCheckIntervalS = 2;
constexpr double kCheckLimitS = 19;
constexpr CV_DAEMON_TYPE kLocalDisplayDaemons[] = {CV_DAEMON_TYPE{11}, CV_DAEMON_TYPE{12}};

// The body of the detached child of "Enable" and "Disable".
[[noreturn]] void RunDetachedAction(AddOns& addons, CONTROL_ACTION action) noexcept {
    (void)setsid();
    if (addons.ExecServiceControl(action, true) != 0) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleEnable",
                 "Failed to execute service control.\n");
    }
    _exit(0);
}

// Waits until no action is under way on the service, or until the time is up; true when none is.
bool WaitForAction(const AddOns& addons, time_t start) {
    while (addons.IsLockFileExist()) {
        sleep(kCheckIntervalS);
        const double elapsedS = std::fabs(difftime(time(nullptr), start));
        if (elapsedS >= kCheckLimitS + 1) {  // parts of a second do not count
            return false;
        }
    }
    return true;
}

// Prepares the restart of the Local Display, which stops no daemon: records it as stopped and removes the
// pid files of its daemons and its login status. Returns false, with nothing changed, when a daemon is
// unknown.
bool ResetLocalDisplay() {
    CV_DAEMON_INFO daemons[std::size(kLocalDisplayDaemons)] = {};
    for (std::size_t i = 0; i < std::size(daemons); ++i) {
        if (GetDaemonInfo(kLocalDisplayDaemons[i], daemons[i]) != 0) {
            CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleRestart",
                     "Failed to get info of daemon type[%d]\n", kLocalDisplayDaemons[i]);
            return false;
        }
    }
    (void)ChangeServiceStatus(ADDON_SERVICE_LOCAL_DISPLAY, CONTROL_ACTION_STOP);
    for (const CV_DAEMON_INFO& daemon : daemons) {
        (void)remove(daemon.pidFile.c_str());
    }
    (void)remove(kLocalDisplayLoginStatus);
    return true;
}

// Stops the service ahead of a start. Returns false when it could not be stopped.
bool StopForRestart(AddOns& addons, int service) {
    if (service == ADDON_SERVICE_LOCAL_DISPLAY) {
        return ResetLocalDisplay();
    }
    if (addons.ExecServiceControl(CONTROL_ACTION_STOP, false) != 0) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, "HandleRestart",
                 "Failed to stop service control.\n");
        return false;
    }
    return true;
}

}  // namespace

void AddOnsHandler::HandleEnable() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    const std::string serviceName = m_pRequest->GetParam("serviceName", "").asString();
    const std::string description = m_pRequest->GetParam("description", "").asString();
    AddOns addons(ADDON_SERVICE_NONE);
    addons.InitService(static_cast<ADDON_SERVICE>(service));
    addons.SetLogInfo(serviceName, description);
    const CONTROL_ACTION action =
        m_pRequest->GetAPIMethod() == "Enable" ? CONTROL_ACTION_START : CONTROL_ACTION_STOP;
    const pid_t child = PLIBCProcFork();
    if (child == 0) {
        RunDetachedAction(addons, action);
    }
    if (child < 0) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, __func__, "Failed to fork child\n");
        m_pResponse->SetError(kErrFailed, Json::Value());
        return;
    }
    m_pResponse->SetSuccess(Json::Value());
}

void AddOnsHandler::HandleRestart() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    AddOns addons(ADDON_SERVICE_NONE);
    addons.InitService(static_cast<ADDON_SERVICE>(service));
    if (!StopForRestart(addons, service)) {
        m_pResponse->SetError(kErrFailed, Json::Value());
        return;
    }
    if (addons.ExecServiceControl(CONTROL_ACTION_START, false) != 0) {
        CVPrintf(0, nullptr, nullptr, "addons", __LINE__, __func__, "Failed to start service control.\n");
        m_pResponse->SetError(kErrFailed, Json::Value());
        return;
    }
    m_pResponse->SetSuccess(Json::Value());
}

void AddOnsHandler::HandleCheckEnableDone() {
    const time_t start = time(nullptr);
    const int service = m_pRequest->GetParam("service", 0).asInt();
    AddOns addons(ADDON_SERVICE_NONE);
    addons.InitService(static_cast<ADDON_SERVICE>(service));
    Json::Value data(Json::objectValue);
    data["blDone"] = WaitForAction(addons, start);
    m_pResponse->SetSuccess(data);
}
