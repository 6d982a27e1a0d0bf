// The process that serves one request and ends.
#pragma once

#include "host/module.h"

#include <string>

namespace host {

// The exit status of a request process that has come to the end of its work: one that a handler would not
// choose.
inline constexpr int kExitServed = 113;

// Makes ahead what every request process would otherwise make anew. Called once by the process that forks
// them.
void PrepareRequests();

// Reads the request from `connection`, has the module's handler answer it, and writes the reply.
//   requestId  the id that log lines and notifications of this request carry
//   timeS      seconds after which the process is ended by SIGALRM; does not hold for what it forks
// Called in a process of its own, right after the fork; never returns and runs no exit handlers.
[[noreturn]] void ServeRequest(int connection, const std::string& requestId, const Module& module,
                               int timeS) noexcept;

}  // namespace host
