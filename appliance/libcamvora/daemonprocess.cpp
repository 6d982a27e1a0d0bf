#include "libcamvora/daemonprocess.h"

#include "libcamvora/daemonlock.h"
#include "libcamvora/descriptor.h"
#include "libcamvora/requestid.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
#include <sys/pidfd.h>  // says so itself only in newer C libraries
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace camvora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kLookAgainMs = 5;

// The attributes and file actions of posix_spawn, with their ends.
class SpawnPlan {
public:
    SpawnPlan() {
        sigset_t all;
        sigset_t none;
        sigfillset(&all);
        sigemptyset(&none);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addchdir_np(&actions_, "/");
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    }
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    // Returns the process's id, or -1.
    pid_t Spawn(std::string program, std::string type) const {
        std::string id = std::string(kRequestIdVariable) + "=" + RequestId();
        std::string starter = std::to_string(getpid());
        const std::array<char*, 4> arguments = {program.data(), type.data(), starter.data(), nullptr};
        const std::array<char*, 2> environment = {id.data(), nullptr};
        pid_t pid = -1;
        const int error =
            posix_spawn(&pid, program.c_str(), &actions_, &attributes_, arguments.data(), environment.data());
        return error == 0 ? pid : -1;
    }

private:
    posix_spawnattr_t attributes_{};
    posix_spawn_file_actions_t actions_{};
};

bool IsGone(int pidFd, int limitMs) {
    struct pollfd process = {pidFd, POLLIN, 0};
    return poll(&process, 1, limitMs) > 0;
}

// The process that holds a daemon's lock, by a handle that stays good when it ends and its id becomes
// another's. Nothing when no daemon runs.
class RunningDaemon {
public:
    explicit RunningDaemon(const std::string& lock) : process_(Open(lock)) {}

    void Signal(int signal) const {
        if (process_.IsOpen()) {
            (void)pidfd_send_signal(process_.Number(), signal, nullptr, 0);
        }
    }

    // Returns false when it has not ended by then.
    bool AwaitEnd(steady_clock::time_point deadline) const {
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now()).count();
        return !process_.IsOpen() || IsGone(process_.Number(), std::max(static_cast<int>(left), 0));
    }

private:
    static Descriptor Open(const std::string& lock) {
        const pid_t pid = DaemonLockHolder(lock);
        Descriptor process(pid == 0 ? -1 : pidfd_open(pid, 0));
        return DaemonLockHolder(lock) == pid ? std::move(process) : Descriptor(-1);
    }

    Descriptor process_;
};

// A daemon that was killed leaves them.
void RemoveFiles(const DaemonPlaces& places, const DaemonEntry& entry) {
    (void)unlink(DaemonPidFile(places.runFolder, entry).c_str());
    (void)unlink(DaemonStatusFile(places.runFolder, entry).c_str());
}

}  // namespace

bool StartDaemon(const DaemonPlaces& places, const DaemonEntry& entry) {
    const pid_t pid = SpawnPlan().Spawn(places.program, std::to_string(entry.type));
    if (pid < 0) {
        return false;
    }
    const Descriptor process(pidfd_open(pid, 0));
    const std::string lock = DaemonLockFile(places.runFolder, entry.type);
    const auto deadline = steady_clock::now() + places.startLimit;
    while (ReadyLockHolder(lock) != pid) {
        if (IsGone(process.Number(), kLookAgainMs) || steady_clock::now() > deadline) {
            (void)kill(pid, SIGKILL);
            (void)waitpid(pid, nullptr, 0);
            return false;
        }
    }
    return true;
}

bool EndDaemons(const DaemonPlaces& places, const DaemonGroup& daemons) {
    std::vector<RunningDaemon> running;
    running.reserve(daemons.size());
    for (const DaemonEntry* daemon : daemons) {
        running.emplace_back(DaemonLockFile(places.runFolder, daemon->type)).Signal(SIGTERM);
    }
    const auto deadline = steady_clock::now() + places.endLimit;
    for (const RunningDaemon& daemon : running) {
        if (!daemon.AwaitEnd(deadline)) {
            daemon.Signal(SIGKILL);
            (void)daemon.AwaitEnd(steady_clock::now() + places.endLimit);
        }
    }
    bool areGone = true;
    for (const DaemonEntry* daemon : daemons) {
        if (DaemonLockHolder(DaemonLockFile(places.runFolder, daemon->type)) == 0) {
            RemoveFiles(places, *daemon);
        } else {
            areGone = false;
        }
    }
    return areGone;
}

}  // namespace camvora
