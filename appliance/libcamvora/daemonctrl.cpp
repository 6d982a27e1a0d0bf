#include "libcamvora/daemonprocess.h"
#include "libcamvora/daemontable.h"
#include "libcamvora/lockqueue.h"
#include "libcamvora/paths.h"
#include "platform/log.h"
#include "platform/services.h"

namespace {

using camvora::DaemonEntry;
using camvora::DaemonGroup;
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

// The daemon of `type` and its helper; empty when there is no such daemon.
DaemonGroup GroupOf(CV_DAEMON_TYPE type) {
    DaemonGroup group;
    for (const DaemonEntry* daemon = camvora::FindDaemon(type); daemon != nullptr;
         daemon = camvora::FindDaemon(daemon->helperType)) {
        group.push_back(daemon);
    }
    return group;
}

bool End(const DaemonGroup& group) {
    if (camvora::EndDaemons(Places(), group)) {
        return true;
    }
    CVPrintf(0, nullptr, nullptr, "daemonctrl", __LINE__, __func__, "Failed to end daemon %s\n",
             group.front()->name);
    return false;
}

bool Replace(const DaemonGroup& group) {
    if (!End(group)) {
        return false;
    }
    bool areStarted = true;
    for (const DaemonEntry* daemon : group) {
        if (!camvora::StartDaemon(Places(), *daemon)) {
            CVPrintf(0, nullptr, nullptr, "daemonctrl", __LINE__, __func__, "Failed to start daemon %s\n",
                     daemon->name);
            areStarted = false;
        }
    }
    return areStarted;
}

// Does `work` with the daemon of `type` and its helper. Returns 0 when it went well.
int InTurn(CV_DAEMON_TYPE type, bool (*work)(const DaemonGroup&)) {
    const DaemonGroup group = GroupOf(type);
    if (group.empty()) {
        return -1;
    }
    const Turn turn(group.front()->turnType);
    if (!turn.IsMine()) {
        CVPrintf(0, nullptr, nullptr, "daemonctrl", __LINE__, __func__, "Failed to lock daemon %s\n",
                 group.front()->name);
        return -1;
    }
    return work(group) ? 0 : -1;
}

}  // namespace

int DaemonCtrl::Run(CV_DAEMON_TYPE type) {
    return InTurn(type, Replace);
}

int DaemonCtrl::Kill(CV_DAEMON_TYPE type) {
    return InTurn(type, End);
}

int GetDaemonInfo(CV_DAEMON_TYPE type, CV_DAEMON_INFO& info) {
    const DaemonEntry* daemon = camvora::FindDaemon(type);
    if (daemon == nullptr) {
        return -1;
    }
    info = {type, daemon->name, camvora::DaemonPidFile(camvora::kRunFolder, *daemon)};
    return 0;
}
