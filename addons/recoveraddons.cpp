// recover-addons [--running]: afterwards the place of each add-on holds a whole tree: what an update or a
// restore that was cut has left, or, where nothing is, the factory's. Without a factory copy it stays empty.
//
// Run when the appliance starts, before anything is served. With --running it may run at any time: it puts
// back what was set aside, and nothing more.
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

bool Recover(ADDON_SERVICE service, bool isRunning) {
    const ScopedLockFile lock(GetPkgLockFile(service), kPackageLockWaitMs);
    if (!lock.IsHeld()) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, __func__, "Failed to lock [%s].\n",
                 lock.Path().c_str());
        return false;
    }
    const bool isRecovered = RecoverAddOn(service);
    if (isRunning) {
        return isRecovered;
    }
    const bool isForgotten = ForgetUnpacked(service, false);
    const bool isForgottenFromHost = ForgetUnpacked(service, true);
    const bool isFilled = FillEmptyPlace(service);  // with the room that the unpacked trees took
    return isRecovered && isFilled && isForgotten && isForgottenFromHost;
}

}  // namespace

int main(int argc, char** argv) {
    const bool isRunning = argc == 2 && std::string(argv[1]) == "--running";
    if (argc > 1 && !isRunning) {
        (void)std::fputs("usage: recover-addons [--running]\n", stderr);
        return kUsage;
    }
    const bool hasDevicePack = Recover(ADDON_SERVICE_DEVICE_PACK, isRunning);
    const bool hasLocalDisplay = Recover(ADDON_SERVICE_LOCAL_DISPLAY, isRunning);
    return hasDevicePack && hasLocalDisplay ? EXIT_SUCCESS : EXIT_FAILURE;
}
