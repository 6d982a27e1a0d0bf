// One add-on service as a request works on it.
#pragma once

#include "addons/servicecontrol.h"
#include "platform/services.h"

#include <string>

struct AddOnPackage;

// A file of a service, see AddOns::GetServiceFile.
enum PROCESS_FILE : int {
    PROCESS_FILE_PID = 0,          // exists while an action process runs
    PROCESS_FILE_LOCK = 1,         // exists while a control action is under way
    PROCESS_FILE_UPDATE_LOCK = 2,  // exists while a package update is under way
};

// The file that an update of `service` holds locked, see PROCESS_FILE_UPDATE_LOCK.
std::string GetUpdateLockFile(ADDON_SERVICE service);

// One service for the length of a request: its identity, its way of control, and the texts for the operation
// log. Used in the request process and in what it forks; never copied within a process.
class AddOns {
public:
    explicit AddOns(ADDON_SERVICE service);
    ~AddOns();
    AddOns(const AddOns&) = delete;
    AddOns& operator=(const AddOns&) = delete;

    // Switches to another service; for the current one nothing happens.
    void InitService(ADDON_SERVICE newService);

    // Makes the way of control of the current service. Only while there is none.
    void InitController();

    // Sets the two texts of the operation-log entry that follows a notified control action.
    void SetLogInfo(std::string serviceName, std::string description);

    // The full path of the service's file; any other value names the lock file.
    std::string GetServiceFile(PROCESS_FILE file) const;

    // True while the lock file of control actions exists, held or not.
    bool IsLockFileExist() const;

    // Performs a control action in a process of its own and waits for its end. Returns 0 when it
    // succeeded, else -1 with a log line. Leaves the recorded status at the action when it succeeded, at
    // CONTROL_ACTION_IN_PROGRESS when it failed on the way, and untouched when it did not begin (no process,
    // no pid file).
    int RunActionControl(CONTROL_ACTION action);

    // Performs a control action under the service's lock, waiting for it at most 3000 ms. With `notify` a
    // success is followed by a notification to the clients and an operation-log entry. Returns 0, or -1.
    int ExecServiceControl(CONTROL_ACTION action, bool notify);

    // Installs a package in place of the installed add-on, under the service's update lock, for which it
    // waits at most 3000 ms. Called in the request process; the programs of the installation run one after
    // the other.
    //   path      the work directory of the service with the unpacked package, with its final "/"; empty for
    //             the package that the online download has left, which is unpacked first
    //   returns   0 when the new tree is in place and the clients have been notified. Else -1: the installed
    //             tree stays, or is back at the next recovery, unless all that failed is to forget the
    //             download
    int ExecuteUpdate(std::string path);

    // Switches the automatic update of the service on or off; where it is so already, nothing happens.
    // Returns 0, or -1 with a log line: the setting could not be written, or it is written and the schedule
    // could not be changed.
    int SetAutoUpdate(bool enable);

    // Makes or removes the schedule of the automatic download; a service without packages has none, which is
    // a success. Returns 0, or -1 with a log line.
    int SetAutoDownload(bool enable);

private:
    // Under the update lock. Return 0, or -1 with a log line.
    int InstallPkg(std::string path);
    int DoInstallPkg(const AddOnPackage& package, const std::string& path) const;

    [[noreturn]] void RunActionProcess(const std::string& pidFile, CONTROL_ACTION action) noexcept;
    void AnnounceAction(CONTROL_ACTION action) const;

    ADDON_SERVICE service;
    std::string logServiceName;
    std::string logDescription;
    ServiceControl* controller = nullptr;
};
