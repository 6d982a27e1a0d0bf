// The channel over which the HTTP process hands connections to the request server. Both inherit it from the
// supervisor, so it has no name that others could connect to, and it outlives either of them.
#pragma once

#include "host/uniquefd.h"

#include <string>
#include <utility>

namespace host {

// The two ends of a new channel: where connections are handed in, and where they are taken out.
// Throws std::system_error.
std::pair<UniqueFd, UniqueFd> OpenIntake();

// A new connection whose other end has been handed in under the request's id; not open on failure.
//   waitLimitS  the longest time that a read or a write on it waits, in seconds
UniqueFd Connect(int intake, const std::string& requestId, int waitLimitS);

struct Arrival {
    UniqueFd connection;
    std::string requestId;
};

// Takes out the next connection. Not open when none is there.
Arrival TakeArrival(int intake);

}  // namespace host
