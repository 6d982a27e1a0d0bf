// Starting and ending the process of one daemon.
#pragma once

#include "libcamvora/daemontable.h"

#include <chrono>
#include <string>
#include <vector>

namespace camvora {

// A daemon and what is started and ended with it; the entries are the table's.
using DaemonGroup = std::vector<const DaemonEntry*>;

// How a daemon is started and how long it is waited for.
struct DaemonPlaces {
    std::string program;    // run with the daemon's type and its starter's id
    std::string runFolder;  // of its lock, pid and status files
    std::chrono::milliseconds startLimit;
    std::chrono::milliseconds endLimit;  // after which SIGKILL follows SIGTERM
};

// Starts the daemon in a session of its own, with none of the caller's descriptors and nothing of its
// environment but the request's id, and waits until it is up. Returns false when it did not come up
// within the start limit; none is left of it then.
bool StartDaemon(const DaemonPlaces& places, const DaemonEntry& entry);

// Ends those of the daemons that run, with SIGTERM and after the end limit, which is one for all, with
// SIGKILL. Waits until they are gone and removes what they leave. Returns false when one is still there.
bool EndDaemons(const DaemonPlaces& places, const DaemonGroup& daemons);

}  // namespace camvora
