#include "addons/factorycopy.h"

#include "addons/addonpackage.h"
#include "addons/disktree.h"
#include "addons/paths.h"
#include "platform/files.h"
#include "platform/log.h"
#include "platform/plibc.h"

#include <cstdio>

bool FillEmptyPlace(ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    if (package == nullptr) {
        return true;
    }
    const std::string place = package->place;
    const std::string factory = place + kFactorySuffix;
    const std::string fresh = place + ".fresh";
    const bool isClear = CVRm(fresh) == 0;
    if (!IsAbsent(place) || !IsFolder(factory)) {
        return true;
    }
    bool isCopied = isClear && PLIBCExec(kCopyProgram, "-a", factory.c_str(), fresh.c_str()) == 0;
    SyncAll();
    isCopied = isCopied && rename(fresh.c_str(), place.c_str()) == 0;
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "%s the factory copy of [%s].\n",
             isCopied ? "Installed" : "Failed to install", package->place);
    if (!isCopied) {
        (void)CVRm(fresh);
    }
    return isCopied;
}
