// The lock by which others see that a daemon runs, and which process it is, whatever became of its pid file.
//
// The kernel frees it with the process, however that ends. Two bytes: one is held from the daemon's
// beginning, so that no second one can run; the other is held once it is up.
#pragma once

#include "libcamvora/descriptor.h"

#include <sys/types.h>

#include <string>

namespace camvora {

// The daemon's side: holds the lock from Hold to the end of this object or of the process, whichever comes
// first. The process opens the file by no other way, as the kernel frees its locks with any descriptor that
// it closes.
class DaemonLock {
public:
    // The lock in the file at `path`, which is made if absent.
    explicit DaemonLock(const std::string& path);

    // Returns false when another process holds it, or the file cannot be had.
    bool Hold();

    // To be called when the daemon is up, with the lock held. Returns false as Hold does.
    bool HoldReady();

private:
    Descriptor file_;
};

// The process that holds the lock; 0 when none does.
pid_t DaemonLockHolder(const std::string& path);

// The process that is up; 0 when none is.
pid_t ReadyLockHolder(const std::string& path);

// True when a process is up, also one of another process namespace, which has no number here.
bool IsReadyLockHeld(const std::string& path);

}  // namespace camvora
