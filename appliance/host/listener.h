// The socket on which the host listens, and the address under which clients reach it.
#pragma once

#include "host/uniquefd.h"

#include <string>

namespace host {

struct Listener {
    UniqueFd socket;
    std::string url;  // "http://127.0.0.1:8417"; the loopback address where all addresses are listened on
};

// Opens a listening socket on a numeric address, at `port` or, for 0, at a free one.
// Throws std::runtime_error that says what is wrong.
Listener Listen(const std::string& address, int port);

}  // namespace host
