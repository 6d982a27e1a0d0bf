// The guard file of each lock file. The lock file itself is only a sign that others look at; what excludes is
// the queue in its guard, which is never removed while the appliance runs.
#pragma once

#include <string>

namespace camvora {

// The guard of the lock file at `path`, in `folder`. Different paths have different guards.
std::string GuardOf(const std::string& folder, const std::string& path);

// The lock file to which the guard named `name` (without folder) belongs.
std::string GuardedBy(const std::string& name);

// Removes the lock files in `folder`'s guards that nobody holds or waits for: what killed holders left
// behind. Called by the host from time to time.
void SweepLockFiles(const std::string& folder);

// The same for the appliance's own guards.
void SweepLockFiles();

}  // namespace camvora
