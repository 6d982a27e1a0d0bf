#include "addons/servicecontrol.h"

#include <cstddef>

namespace {

constexpr OPTION_TYPE kCmsOption{0};
constexpr CV_DAEMON_TYPE kNoDaemon{-1};

constexpr int kFirstDaemonService = ADDON_SERVICE_CMS;
constexpr CV_DAEMON_TYPE kDaemonTypes[] = {
    CV_DAEMON_TYPE{4},   // ADDON_SERVICE_CMS
    CV_DAEMON_TYPE{1},   // ADDON_SERVICE_3
    kNoDaemon,           // ADDON_SERVICE_4
    CV_DAEMON_TYPE{6},   // ADDON_SERVICE_5
    CV_DAEMON_TYPE{11},  // ADDON_SERVICE_LOCAL_DISPLAY
};

int ApplyCmsOption(bool enabled) {
    WebUIOptions options;
    options.SetOption(kCmsOption, Bool2String(enabled));
    return options.Apply();
}

int StartCmsOption(ADDON_SERVICE) {
    return ApplyCmsOption(true);
}

int StopCmsOption(ADDON_SERVICE) {
    return ApplyCmsOption(false);
}

}  // namespace

void ServiceControl::SetActionControl(CONTROL_ACTION action, int (*function)(ADDON_SERVICE)) {
    actions[action] = function;
}

int ServiceControl::RunActionControl(CONTROL_ACTION) {
    return 0;
}

DaemonControl::DaemonControl(ADDON_SERVICE daemonService) : service(daemonService) {
    SetActionControl(CONTROL_ACTION_START, RunDaemon);
    SetActionControl(CONTROL_ACTION_STOP, KillDaemon);
}

int DaemonControl::RunActionControl(CONTROL_ACTION action) {
    const ActionFunction function = actions[action];
    return function == nullptr ? 0 : function(service);
}

CV_DAEMON_TYPE DaemonControl::GetDaemonType(ADDON_SERVICE service) {
    if (service < ADDON_SERVICE_CMS || service > ADDON_SERVICE_LOCAL_DISPLAY) {
        return kNoDaemon;
    }
    return kDaemonTypes[service - kFirstDaemonService];
}

int DaemonControl::KillDaemon(ADDON_SERVICE service) {
    (void)DaemonCtrl::Kill(GetDaemonType(service));  // a stop counts as done
    return 0;
}

int DaemonControl::RunDaemon(ADDON_SERVICE service) {
    (void)DaemonCtrl::Run(GetDaemonType(service));  // a start counts as done
    return 0;
}

CMSControl::CMSControl() : DaemonControl(ADDON_SERVICE_CMS) {
    SetActionControl(CONTROL_ACTION_START, StartCmsOption);
    SetActionControl(CONTROL_ACTION_STOP, StopCmsOption);
}

int CMSControl::RunActionControl(CONTROL_ACTION action) {
    return DaemonControl::RunActionControl(action);
}
