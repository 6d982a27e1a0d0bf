#include "libcamvora/daemonturn.h"

#include "libcamvora/lockqueue.h"
#include "libcamvora/paths.h"
#include "platform/log.h"

namespace camvora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A daemon that does not heed SIGTERM is killed before the next action gives up its wait for the service.
constexpr milliseconds kStartLimit(5000);
constexpr milliseconds kEndLimit(2000);
constexpr milliseconds kTurnLimit(20000);

class Turn {
public:
    explicit Turn(int type)
        : handle_(EnterLockQueue(DaemonGuardFile(kRunFolder, type), steady_clock::now() + kTurnLimit)) {}
    ~Turn() {
        if (handle_ >= 0) {
            LeaveLockQueue(handle_);
        }
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool IsMine() const { return handle_ >= 0; }

private:
    const int handle_;
};

DaemonPlaces Places() {
    return {kDaemonProgram, kRunFolder, kStartLimit, kEndLimit};
}

// Empty when there is no such daemon.
DaemonGroup GroupOf(int type) {
    DaemonGroup group;
    for (const DaemonEntry* daemon = FindDaemon(type); daemon != nullptr;
         daemon = FindDaemon(daemon->helperType)) {
        group.push_back(daemon);
    }
    return group;
}

}  // namespace

bool InDaemonTurn(int type, const std::function<bool(const DaemonGroup&)>& work) {
    const DaemonGroup group = GroupOf(type);
    if (group.empty()) {
        return false;
    }
    const Turn turn(group.front()->turnType);
    if (!turn.IsMine()) {
        CVPrintf(0, nullptr, nullptr, "daemonturn", __LINE__, __func__, "Failed to lock daemon %s\n",
                 group.front()->name);
        return false;
    }
    return work(group);
}

bool EndGroup(const DaemonGroup& group) {
    if (EndDaemons(Places(), group)) {
        return true;
    }
    CVPrintf(0, nullptr, nullptr, "daemonturn", __LINE__, __func__, "Failed to end daemon %s\n",
             group.front()->name);
    return false;
}

bool ReplaceGroup(const DaemonGroup& group) {
    if (!EndGroup(group)) {
        return false;
    }
    bool areStarted = true;
    for (const DaemonEntry* daemon : group) {
        if (!StartDaemon(Places(), *daemon)) {
            CVPrintf(0, nullptr, nullptr, "daemonturn", __LINE__, __func__, "Failed to start daemon %s\n",
                     daemon->name);
            areStarted = false;
        }
    }
    return areStarted;
}

}  // namespace camvora
