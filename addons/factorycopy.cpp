#include "addons/factorycopy.h"

#include "addons/addonpackage.h"
#include "addons/disktree.h"
#include "addons/paths.h"
#include "addons/treeswap.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/plibc.h"

#include <cstdio>
#include <string>

namespace {

std::string FactoryOf(const AddOnPackage& package) {
    return std::string(package.place) + kFactorySuffix;
}

std::string CopyOf(const AddOnPackage& package) {
    return std::string(package.place) + ".fresh";
}

// The whole copy is on the disk afterwards, or there is none.
bool MakeCopy(const AddOnPackage& package) {
    const std::string copy = CopyOf(package);
    if (CVRm(copy) != 0) {
        return false;
    }
    if (PLIBCExec(kCopyProgram, "-a", FactoryOf(package).c_str(), copy.c_str()) != 0) {
        (void)CVRm(copy);
        return false;
    }
    SyncAll();
    return true;
}

bool MoveCopy(const AddOnPackage& package) {
    return rename(CopyOf(package).c_str(), package.place) == 0;
}

bool ReplaceWithCopy(const AddOnPackage& package) {
    TreeSwap swap(package.place, CopyOf(package));
    if (!swap.Prepare()) {
        return false;
    }
    const bool isReplaced = swap.SetAside() && MoveCopy(package) && swap.Seal();
    if (!isReplaced) {
        swap.PutBack();
    }
    swap.Drop();
    return isReplaced;
}

// Says what came of it.
bool Tell(const AddOnPackage& package, bool isInstalled) {
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "InstallCopy", "%s the factory copy of [%s].\n",
             isInstalled ? "Installed" : "Failed to install", package.place);
    if (!isInstalled) {
        (void)CVRm(CopyOf(package));
    }
    return isInstalled;
}

}  // namespace

bool FillEmptyPlace(ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    if (package == nullptr) {
        return true;
    }
    if (!IsAbsent(package->place) || !IsFolder(FactoryOf(*package))) {
        (void)CVRm(CopyOf(*package));
        return true;
    }
    return Tell(*package, MakeCopy(*package) && MoveCopy(*package) && SyncParent(package->place));
}

bool RestoreFactoryCopy(ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    return package != nullptr && Tell(*package, MakeCopy(*package) && ReplaceWithCopy(*package));
}
