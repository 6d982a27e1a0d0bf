// The host's first process: starts the others, starts them again when they fail, and ends everything.
#pragma once

#include "host/accesstoken.h"
#include "host/listener.h"
#include "host/module.h"
#include "host/options.h"
#include "host/restartbudget.h"
#include "host/uploadarea.h"

#include <sys/types.h>

#include <array>
#include <chrono>
#include <functional>
#include <tuple>

namespace host {

// Single-threaded throughout, as it forks. It holds the sockets, so that they outlive the processes that
// serve them.
class Supervisor {
public:
    // Opens the sockets; the references stay the caller's. Throws std::runtime_error when that fails.
    Supervisor(const Options& options, const Module& module, const AccessToken& token);

    // Serves until it is told to stop (SIGTERM, SIGINT, or the end of standard input where the options say
    // so), then lets running requests finish and ends all processes. Returns the exit status: 0, or 1 when a
    // process kept failing.
    int Run();

private:
    struct Child {
        const char* name;
        bool isVital;  // nothing is served without it
        std::function<int()> body;
        pid_t pid = -1;
        RestartBudget restarts = {};
    };

    int RunRequestServer();
    int RunHttpProcess();
    void Start(Child& child);
    bool Supervise();
    bool IsToldToStop(int waitLimitMs);
    bool RestartEnded();
    bool Restart(Child& child);
    void Stop();
    void StopChild(Child& child, std::chrono::steady_clock::time_point deadline);

    const Options& options_;
    const Module& module_;
    const AccessToken& token_;
    UniqueFd signals_;
    Listener listener_;
    UniqueFd handIn_;
    UniqueFd takeOut_;
    const UploadArea uploadArea_;
    std::array<Child, 3> children_;
};

}  // namespace host
