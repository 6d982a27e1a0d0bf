// Cheap reads in the processes of requests.
#pragma once

namespace camvora {

// Keeps the stored state (settings, service status, pairs) in memory for all that this process forks from
// now on. They read it from there until something is written, and from the database afterwards: what they
// read is the same either way, only faster. Called by the request server before each fork; costs one look
// at a file where nothing was written since the last call. Never fails.
void RememberState();

}  // namespace camvora
