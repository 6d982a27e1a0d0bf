#include "platform/locks.h"

#include "libcamvora/lockguards.h"
#include "libcamvora/paths.h"
#include "platform/log.h"

#include <sys/stat.h>

#include <chrono>

int BeginCriticalSection(const std::string& path, int waitLimitMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(waitLimitMs);
    (void)mkdir(camvora::kGuardFolder, 0700);
    const int handle = camvora::EnterGuarded(camvora::kGuardFolder, path, deadline);
    if (handle < 0 && std::chrono::steady_clock::now() < deadline) {  // not a wait that was too long
        CVPrintf(0, nullptr, nullptr, "locks", __LINE__, __func__, "Failed to lock [%s]\n", path.c_str());
    }
    return handle;
}

void EndCriticalSection(int handle) {
    if (handle >= 0) {
        camvora::LeaveLockQueue(handle);
    }
}
