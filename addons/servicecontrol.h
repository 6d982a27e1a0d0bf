// How each add-on service is started and stopped: one class per way.
#pragma once

#include "platform/services.h"

// Starts or stops a service. Returns 0 on success.
using ActionFunction = int (*)(ADDON_SERVICE);

// The way of services that have nothing to start or stop. Used in the process that performs an action.
class ServiceControl {
public:
    ServiceControl() = default;
    virtual ~ServiceControl() = default;
    ServiceControl(const ServiceControl&) = delete;
    ServiceControl& operator=(const ServiceControl&) = delete;

    // Makes `function` what `action` does, in place of what it did before.
    void SetActionControl(CONTROL_ACTION action, int (*function)(ADDON_SERVICE));

    // Performs `action`, one of the values 0 to 4. Returns 0 on success; here always, with nothing done.
    virtual int RunActionControl(CONTROL_ACTION action);

protected:
    ActionFunction actions[5] = {};  // by CONTROL_ACTION; null where an action does nothing
};

// The way of services that a package daemon runs.
class DaemonControl : public ServiceControl {
public:
    explicit DaemonControl(ADDON_SERVICE service);

    // Calls the action's function with the service and returns its result; 0 where there is none.
    int RunActionControl(CONTROL_ACTION action) override;

    // The daemon that runs `service`; -1 when none does.
    static CV_DAEMON_TYPE GetDaemonType(ADDON_SERVICE service);

    // Ends the daemon of `service`. Returns 0, whatever came of it.
    static int KillDaemon(ADDON_SERVICE service);

    // Starts the daemon of `service`. Returns 0, whatever came of it.
    static int RunDaemon(ADDON_SERVICE service);

protected:
    ADDON_SERVICE service;
};

// The way of the central management service: an option of the web user interface, and no daemon.
class CMSControl : public DaemonControl {
public:
    CMSControl();

    // As in DaemonControl; a start or stop fails when the option cannot be applied.
    int RunActionControl(CONTROL_ACTION action) override;
};
