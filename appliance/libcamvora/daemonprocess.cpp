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

#include <array>
#include <cerrno>
#include <csignal>

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
    pid_t Spawn(std::string program, std::string argument) const {
        std::string id = std::string(kRequestIdVariable) + "=" + RequestId();
        const std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
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

bool EndDaemon(const DaemonPlaces& places, const DaemonEntry& entry) {
    const std::string lock = DaemonLockFile(places.runFolder, entry.type);
    const pid_t pid = DaemonLockHolder(lock);
    if (pid == 0) {
        return true;
    }
    const Descriptor process(pidfd_open(pid, 0));
    if (DaemonLockHolder(lock) != pid) {
        return true;  // it has ended in between, and the id may be another's by now
    }
    const int limitMs = static_cast<int>(places.endLimit.count());
    (void)pidfd_send_signal(process.Number(), SIGTERM, nullptr, 0);
    if (!IsGone(process.Number(), limitMs)) {
        (void)pidfd_send_signal(process.Number(), SIGKILL, nullptr, 0);
        (void)IsGone(process.Number(), limitMs);
    }
    return DaemonLockHolder(lock) == 0;
}

}  // namespace camvora
