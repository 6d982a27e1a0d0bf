#include "platform/locks.h"

#include "libcamvora/lockguards.h"
#include "libcamvora/lockqueue.h"
#include "libcamvora/paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>

namespace {

// The sign that somebody is inside. It decides nothing: what matters is the guard.
void ShowLockFile(const std::string& path) {
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (fd >= 0) {
        (void)close(fd);
    }
}

}  // namespace

int BeginCriticalSection(const std::string& path, int waitLimitMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(waitLimitMs);
    (void)mkdir(camvora::kGuardFolder, 0700);
    const std::string guard = camvora::GuardOf(camvora::kGuardFolder, path);
    const int handle = camvora::EnterLockQueue(guard, deadline);
    if (handle >= 0) {
        ShowLockFile(path);
    } else {
        (void)camvora::RemoveUnlessQueued(guard, path);  // the holder may have left it to us, as the next one
    }
    return handle;
}

void EndCriticalSection(int handle) {
    if (handle >= 0) {
        camvora::LeaveLockQueue(handle);
    }
}
