#include "libcamvora/packagedaemons.h"

#include "libcamvora/daemonlock.h"
#include "libcamvora/daemonturn.h"
#include "libcamvora/descriptor.h"
#include "libcamvora/paths.h"
#include "platform/log.h"

#include <fcntl.h>
#include <unistd.h>

namespace camvora {

namespace {

bool Runs(const DaemonEntry& daemon) {
    return DaemonLockHolder(DaemonLockFile(kRunFolder, daemon.type)) != 0;
}

bool NoteStopped(const DaemonEntry& daemon) {
    const Descriptor note(open(DaemonStoppedFile(kRunFolder, daemon.type).c_str(),
                               O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!note.IsOpen()) {
        CVPrintf(0, nullptr, nullptr, "packagedaemons", __LINE__, __func__, "Failed to note daemon %s\n",
                 daemon.name);
    }
    return note.IsOpen();
}

// One that could not be brought back goes on.
bool Stop(const DaemonGroup& group) {
    const DaemonEntry& daemon = *group.front();
    return (!Runs(daemon) || NoteStopped(daemon)) && EndGroup(group);
}

bool StartAgain(const DaemonGroup& group) {
    const DaemonEntry& daemon = *group.front();
    if (access(DaemonStoppedFile(kRunFolder, daemon.type).c_str(), F_OK) != 0) {
        return true;
    }
    if (!Runs(daemon) && !ReplaceGroup(group)) {
        return false;
    }
    ForgetStopped(daemon);
    return true;
}

// Goes on where one fails.
bool WithEachGroup(bool (*work)(const DaemonGroup&)) {
    bool isDone = true;
    for (const int type : GroupLeaders()) {
        isDone = InDaemonTurn(type, work) && isDone;
    }
    return isDone;
}

}  // namespace

bool StopPackageDaemons() {
    return WithEachGroup(Stop);
}

bool StartPackageDaemons() {
    return WithEachGroup(StartAgain);
}

void ForgetStopped(const DaemonEntry& daemon) {
    (void)unlink(DaemonStoppedFile(kRunFolder, daemon.type).c_str());
}

}  // namespace camvora
