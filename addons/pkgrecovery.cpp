#include "addons/pkgrecovery.h"

#include "addons/addonpackage.h"
#include "addons/pkgcontrol.h"
#include "addons/treeswap.h"
#include "platform/log.h"

bool RecoverAddOn(ADDON_SERVICE service) {
    const AddOnPackage* package = FindAddOnPackage(service);
    if (package == nullptr) {
        return true;
    }
    const bool isRecovered = RecoverTree(package->place, [service] {
        return ForgetUnpacked(service, false) && ForgetUnpacked(service, true);
    });
    if (!isRecovered) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to recover [%s].\n",
                 package->place);
    }
    return isRecovered;
}
