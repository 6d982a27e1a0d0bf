// A package daemon of the stand-in appliance: camvora-daemon TYPE STARTER, the latter the process that starts
// it. It does no work of its own. It can be seen to live by the lock it holds, by its pid file and by the
// heartbeat in its status file, and ends on SIGTERM.
#include "libcamvora/daemonlock.h"
#include "libcamvora/daemontable.h"
#include "libcamvora/paths.h"
#include "platform/log.h"
#include "platform/plibc.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

constexpr timespec kHeartbeat = {1, 0};

// The time of the last heartbeat, in seconds since 1970; the reader sees a whole one, this or the last.
void Beat(const std::string& statusFile) {
    const std::string fresh = statusFile + ".new";
    std::FILE* file = std::fopen(fresh.c_str(), "we");
    if (file == nullptr) {
        return;
    }
    (void)std::fprintf(file, "%lld\n", static_cast<long long>(std::time(nullptr)));
    if (std::fclose(file) == 0) {
        (void)std::rename(fresh.c_str(), statusFile.c_str());
    }
}

// From now on the order to end waits until it is asked for, and the files are removed then.
sigset_t HoldBackOrderToEnd() {
    sigset_t end;
    sigemptyset(&end);
    sigaddset(&end, SIGTERM);
    sigprocmask(SIG_BLOCK, &end, nullptr);
    return end;
}

void BeatUntilToldToEnd(const std::string& statusFile, const sigset_t& end) {
    do {
        Beat(statusFile);
    } while (sigtimedwait(&end, nullptr, &kHeartbeat) != SIGTERM);
}

// Nobody sees a daemon that has no lock yet: until then it ends with its starter. Returns false when that is
// gone.
bool HoldBeside(pid_t starter, camvora::DaemonLock& lock) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    const bool isHeld = getppid() == starter && lock.Hold();
    (void)prctl(PR_SET_PDEATHSIG, 0);
    return isHeld;
}

int RunDaemon(const camvora::DaemonEntry& entry, pid_t starter) {
    camvora::DaemonLock lock(camvora::DaemonLockFile(camvora::kRunFolder, entry.type));
    const std::string pidFile = camvora::DaemonPidFile(camvora::kRunFolder, entry);
    const std::string statusFile = camvora::DaemonStatusFile(camvora::kRunFolder, entry);
    const sigset_t end = HoldBackOrderToEnd();
    if (!HoldBeside(starter, lock) || PLIBCProcPidFileCreate(pidFile.c_str()) != 0 || !lock.HoldReady()) {
        CVPrintf(0, nullptr, nullptr, "daemon", __LINE__, __func__,
                 "Failed to start %s, or it runs already\n", entry.name);
        return EXIT_FAILURE;
    }
    BeatUntilToldToEnd(statusFile, end);
    (void)unlink(statusFile.c_str());
    (void)unlink(pidFile.c_str());
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    const camvora::DaemonEntry* entry = argc == 3 ? camvora::FindDaemon(std::atoi(argv[1])) : nullptr;
    if (entry == nullptr) {
        (void)std::fputs("usage: camvora-daemon TYPE STARTER\n", stderr);
        return 2;
    }
    return RunDaemon(*entry, std::atoi(argv[2]));
}
