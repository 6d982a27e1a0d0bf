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

#include <cerrno>

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

// A tree without its description is none: where there is no room for the mark, that goes instead.
bool MarkPartial(const std::string& workDir, const AddOnPackage* package) {
    if (mkdir(PartialMark(workDir).c_str(), kMarkMode) == 0 || errno == EEXIST) {
        return true;
    }
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "ExtractPkg", "Failed to mark [%s]\n",
             workDir.c_str());
    if (package != nullptr) {
        (void)CVRm(workDir + "/" + package->tree + "/" + kConfName);
    }
    return false;
}

// What the outer archive has put there must not pass for the tree, or for a part of it.
bool ClearTreePlace(const std::string& tree) {
    return IsAbsent(tree) || CVRm(tree) == 0;
}

// What is not there cannot be read, so the checks that follow fail. Returns false when it stays.
bool RefusePkg(const std::string& dir, const char* reason) {
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "ExtractPkg", "Removed [%s]: %s\n", dir.c_str(),
             reason);
    return CVRm(dir) == 0;
}

// Unpacks both archives in `workDir`. Returns false when what must not be installed stays there.
bool UnpackPkg(const std::string& workDir, const std::string& filePath, ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    const std::string dir = workDir + "/";
    bool isClean = true;
    RunTar(dir, filePath);
    if (!RemoveSpecialFiles(workDir) || (package != nullptr && !ClearTreePlace(dir + package->tree))) {
        isClean = RefusePkg(dir, "cannot be looked through");
    }
    UnpackTree(dir, service);
    if (package != nullptr && !IsTreeSound(workDir, package->tree)) {
        isClean = RefusePkg(dir, "links or special files") && isClean;
    }
    return isClean;
}

}  // namespace

// Without the mark nothing is unpacked.
void ExtractPkg(std::string& filePath, bool fromHost, ADDON_SERVICE service) {
    const std::string workDir = GetWorkDir(service, fromHost);
    const std::string dir = workDir + "/";
    const bool isMarked = MarkPartial(workDir, FindAddOnPackage(service));
    (void)CVRm(dir);
    (void)CreateFullDirPath(dir);
    if (isMarked && UnpackPkg(workDir, filePath, service)) {
        (void)rmdir(PartialMark(workDir).c_str());
    }
    (void)CVRm(filePath);
    filePath = dir;
}

bool ForgetUnpacked(ADDON_SERVICE service, bool fromHost) {
    const AddOnPackage* package = FindAddOnPackage(service);
    const std::string workDir = GetWorkDir(service, fromHost);
    const bool isMarked = MarkPartial(workDir, package);
    if (package != nullptr && CVRm(workDir + "/" + package->tree) != 0) {
        return isMarked;
    }
    (void)rmdir(PartialMark(workDir).c_str());
    return true;
}

bool IsWholeUnpacking(const std::string& dir) {
    return IsAbsent(PartialMark(dir.substr(0, dir.size() - 1)));
}
