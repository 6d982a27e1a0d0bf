// restore-addon device_pack|local_display: puts the factory's copy of the add-on in place of the installed
// one. Run by the scripts that restore it, which it does not need any more from then on: one of them lies in
// the tree that is replaced.
#include "addons/factorycopy.h"
#include "addons/pkgcontrol.h"
#include "addons/pkgrecovery.h"
#include "addons/scopedlockfile.h"
#include "platform/log.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int kUsage = 2;

ADDON_SERVICE ServiceNamed(const std::string& name) {
    for (const ADDON_SERVICE service : {ADDON_SERVICE_DEVICE_PACK, ADDON_SERVICE_LOCAL_DISPLAY}) {
        if (name == GetServiceStr(service)) {
            return service;
        }
    }
    return ADDON_SERVICE_NONE;
}

// Beside an update, which holds the lock for all of its work, nothing is touched.
bool Restore(ADDON_SERVICE service) {
    const ScopedLockFile lock(GetPkgLockFile(service), kPackageLockWaitMs);
    if (!lock.IsHeld()) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to lock [%s].\n",
                 lock.Path().c_str());
        return false;
    }
    return RecoverAddOn(service) && RestoreFactoryCopy(service);
}

}  // namespace

int main(int argc, char** argv) {
    const ADDON_SERVICE service = argc == 2 ? ServiceNamed(argv[1]) : ADDON_SERVICE_NONE;
    if (service == ADDON_SERVICE_NONE) {
        (void)std::fputs("usage: restore-addon device_pack|local_display\n", stderr);
        return kUsage;
    }
    return Restore(service) ? EXIT_SUCCESS : EXIT_FAILURE;
}
