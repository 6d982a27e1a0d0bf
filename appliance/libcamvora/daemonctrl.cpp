#include "libcamvora/daemontable.h"
#include "libcamvora/daemonturn.h"
#include "libcamvora/packagedaemons.h"
#include "libcamvora/paths.h"
#include "platform/services.h"

int DaemonCtrl::Run(CV_DAEMON_TYPE type) {
    return camvora::InDaemonTurn(type, camvora::ReplaceGroup) ? 0 : -1;
}

// Whoever ends a daemon while the package is stopped does not want it back with the package.
int DaemonCtrl::Kill(CV_DAEMON_TYPE type) {
    const auto endForGood = [](const camvora::DaemonGroup& group) {
        camvora::ForgetStopped(*group.front());
        return camvora::EndGroup(group);
    };
    return camvora::InDaemonTurn(type, endForGood) ? 0 : -1;
}

int GetDaemonInfo(CV_DAEMON_TYPE type, CV_DAEMON_INFO& info) {
    const camvora::DaemonEntry* daemon = camvora::FindDaemon(type);
    if (daemon == nullptr) {
        return -1;
    }
    info = {type, daemon->name, camvora::DaemonPidFile(camvora::kRunFolder, *daemon)};
    return 0;
}
