// Installing an unpacked package in place of the installed add-on.
#include "addons/addonpackage.h"
#include "addons/addonsservice.h"
#include "addons/announcement.h"
#include "addons/disktree.h"
#include "addons/paths.h"
#include "addons/pkgcontrol.h"
#include "addons/pkgrecovery.h"
#include "addons/scopedlockfile.h"
#include "addons/treeswap.h"
#include "platform/files.h"
#include "platform/locks.h"
#include "platform/log.h"
#include "platform/notify.h"
#include "platform/plibc.h"
#include "platform/releases.h"

#include <unistd.h>

#include <utility>

namespace {

constexpr int kUpdateLockWaitMs = 3000;

bool IsWorkDirOf(ADDON_SERVICE service, const std::string& path) {
    return path == GetWorkDir(service, false) + "/" || path == GetWorkDir(service, true) + "/";
}

// Unpacks the package that the online download has left. Returns false when there is none.
bool UnpackDownload(ADDON_SERVICE service, std::string& path) {
    bool isReady = false;
    APP_DOWNLOAD_INFO info;
    if (AddonsUpdate(service).ReadDownloadInfoFile(isReady, info) != 0 || !isReady) {
        return false;
    }
    ExtractPkg(info.filePath, false, service);
    path = info.filePath;
    return true;
}

void RunScript(const char* script, const char* argument = nullptr) {
    (void)PLIBCExec(script, argument);
}

// Sets the installed tree aside and runs the programs that remove and move. Returns true when the new tree
// has arrived; otherwise the old one is back.
bool ReplaceTree(TreeSwap& swap, const AddOnPackage& package, const std::string& path) {
    bool isReplaced = swap.SetAside();
    if (isReplaced) {
        (void)PLIBCExec(kRemoveProgram, "-rf", package.place);
        isReplaced = swap.IsPlaceFree();
    }
    if (isReplaced) {
        (void)PLIBCExec(kMoveProgram, "-f", (path + package.tree).c_str(), package.place);
        isReplaced = swap.Seal();
    }
    if (!isReplaced) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "DoInstallPkg", "Failed to replace [%s].\n",
                 package.place);
        swap.PutBack();
        return false;
    }
    (void)PLIBCExec(kRemoveProgram, "-rf", path.c_str());
    return true;
}

// The whole main package is stopped meanwhile.
bool ReplaceDevicePack(TreeSwap& swap, const AddOnPackage& package, const std::string& path) {
    RunScript(kStartScript, "stop");
    RunScript(kPreUpgradeScript);
    RunScript(kPreInstallScript);
    const bool isReplaced = ReplaceTree(swap, package, path);
    if (isReplaced) {
        RunScript(kPostInstallScript);
        RunScript(kPostUpgradeScript);
    }
    RunScript(kStartScript, "start");
    return isReplaced;
}

bool ReplaceLocalDisplay(TreeSwap& swap, const AddOnPackage& package, const std::string& path) {
    const bool wasRunning = IsServiceRunning(package.service);
    if (wasRunning) {
        (void)ChangeServiceStatus(package.service, CONTROL_ACTION_STOP);
        (void)DaemonControl::KillDaemon(package.service);
    }
    const bool isReplaced = ReplaceTree(swap, package, path);
    if (wasRunning) {
        (void)DaemonControl::RunDaemon(package.service);
        (void)ChangeServiceStatus(package.service, CONTROL_ACTION_START);
    }
    return isReplaced;
}

}  // namespace

int AddOns::ExecuteUpdate(std::string path) {
    const bool isDownload = path.empty();
    AddonsUpdate update(service);
    if (!isDownload && !IsWorkDirOf(service, path)) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Not a work directory [%s].\n",
                 path.c_str());
        return -1;
    }
    const std::string lockFile = GetServiceFile(PROCESS_FILE_UPDATE_LOCK);
    const int lock = BeginCriticalSection(lockFile, kUpdateLockWaitMs);
    if (lock < 0) {
        return -1;
    }
    int result = InstallPkg(std::move(path));
    if (result == 0 && isDownload && update.CleanDownloadResult() != 0) {
        result = -1;
    }
    if (result == 0) {
        CVClientNotify::Notify(kNotifyAddOns, itos(service), itos(CONTROL_ACTION_UPDATE), "0");
    }
    EndCriticalSection(lock);
    (void)unlink(lockFile.c_str());
    return result;
}

int AddOns::InstallPkg(std::string path) {
    const AddOnPackage* package = FindAddOnPackage(service);
    if (package == nullptr) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "DoInstallPkg", "Invalid service type\n");
        return -1;
    }
    const ScopedLockFile lock(GetPkgLockFile(service), kPackageLockWaitMs);
    if (!lock.IsHeld()) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "ExecuteUpdate", "Failed to lock [%s].\n",
                 lock.Path().c_str());
        return -1;
    }
    if (!RecoverAddOn(service)) {
        return -1;
    }
    if (path.empty() && !UnpackDownload(service, path)) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "ExecuteUpdate",
                 "Failed to decompress auto update package patch.\n");
        return -1;
    }
    return DoInstallPkg(*package, path);
}

// What was not unpacked leaves no description, perhaps an empty folder.
int AddOns::DoInstallPkg(const AddOnPackage& package, const std::string& path) const {
    const std::string fresh = path + package.tree;
    TreeSwap swap(package.place, fresh);
    if (!IsWholeUnpacking(path) || !IsFile(fresh + "/" + kConfName) || !swap.Prepare()) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Nothing to install in [%s].\n",
                 path.c_str());
        return -1;
    }
    const bool isReplaced = service == ADDON_SERVICE_DEVICE_PACK ? ReplaceDevicePack(swap, package, path)
                                                                 : ReplaceLocalDisplay(swap, package, path);
    swap.Drop();
    return isReplaced ? 0 : -1;
}
