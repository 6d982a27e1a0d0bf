// The host's processes, as the supervisor and their parents handle them.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>

namespace host {

// Has the calling process killed when its parent ends, which must be `parent`.
void EndWithParent(pid_t parent);

// Forks a process that runs `body` and ends with its result. It starts as a program does: no signal held
// back or ignored, a session of its own, nothing to read on standard input; standard output goes nowhere.
// It ends with the caller. Returns its id; throws std::system_error when it cannot be forked.
pid_t StartProcess(const std::function<int()>& body);

// Waits until no child of the calling process runs its own program any more, or until `deadline`: then all
// detached work is done, and what is left are programs that were started to stay. Reaps what has ended.
void AwaitForkedChildren(std::chrono::steady_clock::time_point deadline);

// Ends all children of the calling process and, where it is their subreaper, all that come after them: first
// with SIGTERM, after `grace` with SIGKILL. Returns when none is left.
void EndDescendants(std::chrono::milliseconds grace);

}  // namespace host
