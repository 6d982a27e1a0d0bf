// Unpacking. The programs say nothing that is looked at: what they leave is judged instead.
#include "addons/pkgcontrol.h"

#include "addons/addonpackage.h"
#include "addons/disktree.h"
#include "addons/paths.h"
#include "addons/pkgtree.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/plibc.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kMarkMode = 0700;

void RunTar(const std::string& folder, const std::string& archive) {
    (void)PLIBCExec(kTarProgram, "-C", folder.c_str(), "-xvf", archive.c_str());
}

// Unpacks the inner archive in `dir`, the work directory with its final "/".
void UnpackTree(const std::string& dir, ADDON_SERVICE service) {
    const std::string archive = dir + kInnerArchiveName;
    if (service == ADDON_SERVICE_DEVICE_PACK) {
        RunTar(dir, archive);
    } else if (service == ADDON_SERVICE_LOCAL_DISPLAY) {
        const std::string tree = dir + "/" + kLocalDisplayTree;
        (void)CreateFullDirPath(tree);
        RunTar(tree, archive);
    }
}

// Beside the work directory while it is filled or cleared: whatever is killed then leaves it.
std::string PartialMark(const std::string& workDir) {
    return workDir + ".partial";
}

// What the outer archive has put there must not pass for the tree, or for a part of it.
bool ClearTreePlace(const std::string& tree) {
    return IsAbsent(tree) || CVRm(tree) == 0;
}

// What is not there cannot be read, so the checks that follow fail.
void RefusePkg(const std::string& dir) {
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "ExtractPkg",
             "Removed [%s]: links or special files\n", dir.c_str());
    (void)CVRm(dir);
}

}  // namespace

void ExtractPkg(std::string& filePath, bool fromHost, ADDON_SERVICE service) {
    const std::string workDir = GetWorkDir(service, fromHost);
    const std::string dir = workDir + "/";
    (void)mkdir(PartialMark(workDir).c_str(), kMarkMode);
    (void)CVRm(dir);
    (void)CreateFullDirPath(dir);
    RunTar(dir, filePath);
    const AddOnPackage* package = FindAddOnPackage(service);
    if (!RemoveSpecialFiles(workDir) ||
        (package != nullptr && !ClearTreePlace(workDir + "/" + package->tree))) {
        RefusePkg(dir);
    }
    UnpackTree(dir, service);
    if (package != nullptr && !IsTreeSound(workDir, package->tree)) {
        RefusePkg(dir);
    }
    (void)rmdir(PartialMark(workDir).c_str());
    (void)CVRm(filePath);
    filePath = dir;
}

bool ForgetUnpacked(ADDON_SERVICE service, bool fromHost) {
    const AddOnPackage* package = FindAddOnPackage(service);
    const std::string workDir = GetWorkDir(service, fromHost);
    (void)mkdir(PartialMark(workDir).c_str(), kMarkMode);
    if (package != nullptr && CVRm(workDir + "/" + package->tree) != 0) {
        return false;
    }
    (void)rmdir(PartialMark(workDir).c_str());
    return true;
}

bool IsWholeUnpacking(const std::string& dir) {
    return IsAbsent(PartialMark(dir.substr(0, dir.size() - 1)));
}
