// The guard file of each lock file. The lock file itself is only a sign that others look at; what excludes is
// the queue in its guard, which is never removed while the appliance runs.
#pragma once

#include "libcamvora/lockqueue.h"

#include <string>

namespace camvora {

// The guard of the lock file at `path`, in `folder`. Different paths have different guards.
std::string GuardOf(const std::string& folder, const std::string& path);

// The lock file to which the guard named `name` (without folder) belongs.
std::string GuardedBy(const std::string& name);

// Enters the section of the lock file at `path` as EnterLockQueue does, with the guard in `folder`, and makes
// the file. Returns -1 when either fails; the file is then left to those who hold or await the section.
int EnterGuarded(const std::string& folder, const std::string& path, Deadline deadline);

// Removes the file at `path`, unless it is a lock file whose section somebody holds or awaits. Returns 0 when
// it is gone or spared.
int RemoveGuarded(const std::string& folder, const std::string& path);

// Removes the lock files of `folder`'s guards that nobody holds or waits for, with the pid files beside them:
// what killed holders left behind. Called by the host from time to time.
void SweepLockFiles(const std::string& folder);

// The same for the appliance's own guards.
void SweepLockFiles();

}  // namespace camvora
