#include "platform/locks.h"

#include "libcamvora/lockguards.h"
#include "libcamvora/paths.h"

#include <sys/stat.h>

#include <chrono>

int BeginCriticalSection(const std::string& path, int waitLimitMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(waitLimitMs);
    (void)mkdir(camvora::kGuardFolder, 0700);
    return camvora::EnterGuarded(camvora::kGuardFolder, path, deadline);
}

void EndCriticalSection(int handle) {
    if (handle >= 0) {
        camvora::LeaveLockQueue(handle);
    }
}
