// Add-on services, their daemons and the package's running state.
// Implemented by the package library; each call may be made from any process of a request.
#pragma once

#include <json/value.h>

#include <string>

// An add-on service. Requests carry it as a JSON integer; values outside the list are passed on.
enum ADDON_SERVICE : int {
    ADDON_SERVICE_NONE = 0,
    ADDON_SERVICE_DEVICE_PACK = 1,
    ADDON_SERVICE_CMS = 2,
    ADDON_SERVICE_3 = 3,
    ADDON_SERVICE_4 = 4,
    ADDON_SERVICE_5 = 5,
    ADDON_SERVICE_LOCAL_DISPLAY = 6,
};

// What is done to a service, and the status recorded for it. The value 3 is not used.
enum CONTROL_ACTION : int {
    CONTROL_ACTION_STOP = 0,
    CONTROL_ACTION_START = 1,
    CONTROL_ACTION_UPDATE = 2,       // only in notifications, after an update or a restore
    CONTROL_ACTION_IN_PROGRESS = 4,  // only as a status, while an action runs
};

// A daemon of the package; -1 is no daemon. The numbers are the package library's.
enum CV_DAEMON_TYPE : int {};

// Where a daemon is found.
struct CV_DAEMON_INFO {
    CV_DAEMON_TYPE type;
    std::string name;
    std::string pidFile;  // full path
};

// An option of the web user interface; the number 0 is the first one.
enum OPTION_TYPE : int {};

// Describes `service` for a user interface: a JSON object, also for values that are no service.
Json::Value GetServiceInfo(ADDON_SERVICE service);

// The short name of `service`, used in file names: never empty, without "/".
std::string GetServiceStr(ADDON_SERVICE service);

// Records `status` as the last known state of `service`. Returns 0, or -1 when it cannot be stored.
int ChangeServiceStatus(ADDON_SERVICE service, CONTROL_ACTION status);

// True while the service works: for one with a daemon, while that process lives, whatever was recorded.
bool IsServiceRunning(ADDON_SERVICE service);

// True while the main package is started.
bool IsCVRunning();

// Starts and stops package daemons.
class DaemonCtrl {
public:
    // Starts the daemon of `type` and waits until it is up; one that runs already is replaced.
    // Returns 0, or -1 when there is no such daemon or it did not come up.
    static int Run(CV_DAEMON_TYPE type);

    // Ends the daemon of `type` and waits until it is gone. Returns 0, also when none ran; -1 when
    // there is no such daemon or it could not be ended.
    static int Kill(CV_DAEMON_TYPE type);
};

// Fills `info` for the daemon of `type`. Returns 0, or -1 with `info` untouched when there is none.
int GetDaemonInfo(CV_DAEMON_TYPE type, CV_DAEMON_INFO& info);

// A set of web user interface options, empty at first, that is applied as a whole.
class WebUIOptions {
public:
    WebUIOptions();
    ~WebUIOptions();
    WebUIOptions(const WebUIOptions&) = delete;
    WebUIOptions& operator=(const WebUIOptions&) = delete;

    // Puts the option into the set; nothing is stored before Apply.
    void SetOption(OPTION_TYPE type, const std::string& value);

    // Stores the set. Returns 0, or -1 with nothing stored.
    int Apply();

private:
    Json::Value options_;
};

// The text under which options and settings keep `value`.
std::string Bool2String(bool value);
