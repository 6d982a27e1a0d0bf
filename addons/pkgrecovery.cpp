#include "addons/pkgrecovery.h"

#include "addons/addonpackage.h"
#include "addons/pkgcontrol.h"
#include "addons/treeswap.h"
#include "platform/log.h"

namespace {

std::string UnpackedTree(const AddOnPackage& package, bool fromHost) {
    return GetWorkDir(package.service, fromHost) + "/" + package.tree;
}

}  // namespace

bool RecoverAddOn(ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    if (package == nullptr) {
        return true;
    }
    const bool isRecovered =
        RecoverTree(package->place, UnpackedTree(*package, false), UnpackedTree(*package, true));
    if (!isRecovered) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to recover [%s].\n",
                 package->place);
    }
    return isRecovered;
}
