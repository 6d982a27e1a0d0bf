// The lock by which others see that a daemon runs, and which process it is, whatever became of its pid file.
//
// The kernel frees it with the process, however that ends. Two bytes: one is held from the daemon's
// beginning, so that no second one can run; the other is held once it is up.
#pragma once

#include <sys/types.h>

#include <string>

namespace camvora {

// The daemon's side. Takes the lock in the file at `path`, made if absent, for the rest of this process's
// life. Returns false when another process has it. Call HoldReadyLock when the daemon is up.
bool HoldDaemonLock(const std::string& path);
bool HoldReadyLock(const std::string& path);

// The process that holds the lock; 0 when none does.
pid_t DaemonLockHolder(const std::string& path);

// The process that is up; 0 when none is.
pid_t ReadyLockHolder(const std::string& path);

}  // namespace camvora
