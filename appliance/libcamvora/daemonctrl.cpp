#include "libcamvora/daemonprocess.h"
#include "libcamvora/daemontable.h"
#include "libcamvora/lockqueue.h"
#include "libcamvora/paths.h"
#include "platform/log.h"
#include "platform/services.h"

namespace {

using camvora::DaemonEntry;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A daemon that does not heed SIGTERM is killed before the next action gives up its wait for the service.
constexpr milliseconds kStartLimit(5000);
constexpr milliseconds kEndLimit(2000);
constexpr milliseconds kTurnLimit(20000);

// One start or end of a daemon at a time: a restore or an update starts and ends it without the lock of its
// service.
class Turn {
public:
    explicit Turn(int type)
        : handle_(camvora::EnterLockQueue(camvora::DaemonGuardFile(camvora::kRunFolder, type),
                                          steady_clock::now() + kTurnLimit)) {}
    ~Turn() {
        if (handle_ >= 0) {
            camvora::LeaveLockQueue(handle_);
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool IsMine() const { return handle_ >= 0; }

private:
    const int handle_;
};

camvora::DaemonPlaces Places() {
    return {camvora::kDaemonProgram, camvora::kRunFolder, kStartLimit, kEndLimit};
}

bool End(const DaemonEntry& entry) {
    if (camvora::EndDaemon(Places(), entry)) {
        return true;
    }
    CVPrintf(0, nullptr, nullptr, "daemonctrl", __LINE__, __func__, "Failed to end daemon %s\n", entry.name);
    return false;
}

bool Replace(const DaemonEntry& entry) {
    if (!End(entry)) {
        return false;
    }
    if (camvora::StartDaemon(Places(), entry)) {
        return true;
    }
    CVPrintf(0, nullptr, nullptr, "daemonctrl", __LINE__, __func__, "Failed to start daemon %s\n",
             entry.name);
    return false;
}

// Does `work` with the daemon of `type`, then with its helper. Returns 0 when both went well.
int ForEach(CV_DAEMON_TYPE type, bool (*work)(const DaemonEntry&)) {
    const DaemonEntry* daemon = camvora::FindDaemon(type);
    if (daemon == nullptr) {
        return -1;
    }
    const Turn turn(type);
    if (!turn.IsMine()) {
        return -1;
    }
    const DaemonEntry* helper = camvora::FindDaemon(daemon->helperType);
    const bool done = work(*daemon);
    const bool helperDone = helper == nullptr || work(*helper);
    return done && helperDone ? 0 : -1;
}

}  // namespace

int DaemonCtrl::Run(CV_DAEMON_TYPE type) {
    return ForEach(type, Replace);
}

int DaemonCtrl::Kill(CV_DAEMON_TYPE type) {
    return ForEach(type, End);
}

int GetDaemonInfo(CV_DAEMON_TYPE type, CV_DAEMON_INFO& info) {
    const DaemonEntry* daemon = camvora::FindDaemon(type);
    if (daemon == nullptr) {
        return -1;
    }
    info = {type, daemon->name, camvora::DaemonPidFile(camvora::kRunFolder, *daemon)};
    return 0;
}
