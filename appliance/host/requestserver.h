// The process that forks one process per request.
#pragma once

#include "host/intake.h"
#include "host/module.h"
#include "host/options.h"

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <string>
#include <unordered_map>

namespace host {

// Single-threaded, so that a request process may fork further. It never looks at a request: the request
// process reads it, so that a hostile one can at worst end itself.
class RequestServer {
public:
    // Takes connections from `intake`; both references stay the caller's.
    RequestServer(UniqueFd intake, const Module& module, const Options& options);

    // Serves until the process is ended by a signal.
    [[noreturn]] void Run();

private:
    struct Running {
        // Kept until the request process has ended, to send word of it.
        UniqueFd connection;
        std::string requestId;
        std::chrono::steady_clock::time_point deadline;  // for a process that does not end by itself in time
        bool isOverdue = false;
    };

    void WaitForEvent();
    void TakeArrivals();
    void Start(Arrival arrival);
    [[noreturn]] void BecomeRequestProcess(const Arrival& arrival) noexcept;
    void EndOverdue();
    void ReapEnded();

    UniqueFd intake_;
    const Module& module_;
    const Options& options_;
    sigset_t waitMask_{};  // of signals that are held back while it waits
    std::unordered_map<pid_t, Running> running_;
};

}  // namespace host
