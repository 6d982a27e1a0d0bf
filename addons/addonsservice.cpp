#include "addons/addonsservice.h"

#include "addons/addonpackage.h"
#include "addons/announcement.h"
#include "addons/paths.h"
#include "platform/files.h"
#include "platform/locks.h"
#include "platform/log.h"
#include "platform/notify.h"
#include "platform/plibc.h"
#include "platform/releases.h"
#include "platform/settings.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

constexpr int kControlLockWaitMs = 3000;

ServiceControl* MakeController(ADDON_SERVICE service) {
    switch (service) {
        case ADDON_SERVICE_CMS:
            return new CMSControl();
        case ADDON_SERVICE_3:
        case ADDON_SERVICE_5:
        case ADDON_SERVICE_LOCAL_DISPLAY:
            return new DaemonControl(service);
        default:
            return new ServiceControl();
    }
}

// Waits for exactly this child; a signal does not end the wait.
bool EndedWell(pid_t child) {
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(child, &status, 0);
    } while (ended < 0 && errno == EINTR);
    return ended == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

std::string GetUpdateLockFile(ADDON_SERVICE service) {
    return std::string(kProcessFilePrefix) + kUpdateLockName + "_" + GetServiceStr(service) + kLockSuffix;
}

AddOns::AddOns(ADDON_SERVICE initialService) : service(initialService) {
    InitController();
}

AddOns::~AddOns() {
    delete controller;
    controller = nullptr;
}

void AddOns::InitService(ADDON_SERVICE newService) {
    if (newService == service) {
        return;
    }
    service = newService;
    delete controller;
    controller = nullptr;
    InitController();
}

void AddOns::InitController() {
    controller = MakeController(service);
}

void AddOns::SetLogInfo(std::string serviceName, std::string description) {
    logServiceName = std::move(serviceName);
    logDescription = std::move(description);
}

std::string AddOns::GetServiceFile(PROCESS_FILE file) const {
    if (file == PROCESS_FILE_UPDATE_LOCK) {
        return GetUpdateLockFile(service);
    }
    return kProcessFilePrefix + GetServiceStr(service) +
           (file == PROCESS_FILE_PID ? kPidSuffix : kLockSuffix);
}

bool AddOns::IsLockFileExist() const {
    return IsFileExist(GetServiceFile(PROCESS_FILE_LOCK));
}

int AddOns::RunActionControl(CONTROL_ACTION action) {
    const std::string pidFile = GetServiceFile(PROCESS_FILE_PID);
    int result = 0;
    const pid_t child = fork();
    if (child == 0) {
        RunActionProcess(pidFile, action);
    }
    if (child < 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to fork\n");
        result = -1;
    } else if (!EndedWell(child)) {
        __extension__ CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                               "Failed to execute control function [%m].\n");
        result = -1;
    }
    (void)RemoveFileIfExist(pidFile);
    return result;
}

void AddOns::RunActionProcess(const std::string& pidFile, CONTROL_ACTION action) noexcept {
    if (PLIBCProcPidFileCreate(pidFile.c_str()) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "RunActionControl",
                 "Failed to write pid file [%s].\n", pidFile.c_str());
        _exit(-1);
    }
    (void)ChangeServiceStatus(service, CONTROL_ACTION_IN_PROGRESS);
    if (controller->RunActionControl(action) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "RunActionControl",
                 "Failed to run action control.\n");
        _exit(-1);
    }
    (void)ChangeServiceStatus(service, action);
    _exit(0);
}

int AddOns::ExecServiceControl(CONTROL_ACTION action, bool notify) {
    const std::string lockFile = GetServiceFile(PROCESS_FILE_LOCK);
    const int lock = BeginCriticalSection(lockFile, kControlLockWaitMs);
    if (lock < 0) {
        return -1;
    }
    const int result = RunActionControl(action) == 0 ? 0 : -1;
    if (result != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                 "Failed to control service file.\n");
    } else if (notify) {
        AnnounceAction(action);
    }
    EndCriticalSection(lock);
    (void)RemoveFileIfExist(lockFile);
    return result;
}

void AddOns::AnnounceAction(CONTROL_ACTION action) const {
    CVClientNotify::Notify(kNotifyAddOns, itos(service), itos(action), itos(0));
    CVLog(kLogAddOns, 0, logServiceName, logDescription, "");
}

int AddOns::SetAutoUpdate(bool enable) {
    const std::string key = GetAutoDownloadKey(service);
    if (IsSettingEnabled(key, false, false) == enable) {
        return 0;
    }
    if (SetSettingEnabled(key, enable) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                 "Failed to set auto-update key.\n");
        return -1;
    }
    if (SetAutoDownload(enable) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                 "Failed to set auto-update schedule.\n");
        return -1;
    }
    return 0;
}

int AddOns::SetAutoDownload(bool enable) {
    AddonsUpdate update(service);
    if (FindAddOnPackage(service) != nullptr && update.SetAutoDownloadCrontabRule(enable) != 0) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__,
                 "Failed to set auto-update schedule.\n");
        return -1;
    }
    return 0;
}
