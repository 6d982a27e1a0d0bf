// recover-addons: run when the appliance starts, before anything is served. Afterwards the place of each
// add-on holds a whole tree: what an update that was cut has left, or, where nothing is, the factory's.
// Without a factory copy it stays empty.
#include "addons/factorycopy.h"
#include "addons/pkgcontrol.h"
#include "addons/pkgrecovery.h"
#include "addons/scopedlockfile.h"

namespace {

bool Recover(ADDON_SERVICE service) {
    const ScopedLockFile lock(GetPkgLockFile(service), kPackageLockWaitMs);
    if (!lock.IsHeld()) {
        return false;
    }
    const bool isRecovered = RecoverAddOn(service);
    const bool isForgotten = ForgetUnpacked(service, false);
    const bool isForgottenFromHost = ForgetUnpacked(service, true);
    return isRecovered && FillEmptyPlace(service) && isForgotten && isForgottenFromHost;
}

}  // namespace

int main() {
    const bool hasDevicePack = Recover(ADDON_SERVICE_DEVICE_PACK);
    const bool hasLocalDisplay = Recover(ADDON_SERVICE_LOCAL_DISPLAY);
    return hasDevicePack && hasLocalDisplay ? 0 : 1;
}
