// Stand-ins for fork, waitpid, setsid, _exit, sleep and time: the linker leads the test program's calls of
// them here first. Unless a test wants otherwise they do what they always do. While a Session lives, each but
// time is recorded: waitpid when it returns, and naming the child by its number ("waitpid child1").
#pragma once

#include <ctime>
#include <string>

namespace fake {

// Makes the next call of `function` ("fork", "waitpid", "setsid") fail with `error` as errno; several
// fail one call each.
void FailOnce(const std::string& function, int error);

// Stops the clock at `now`: time gives it, and sleep moves it on by its seconds (or by its scripted answer)
// instead of waiting. A forked child goes on with a copy of the clock.
void SetClock(std::time_t now);

// For Session: back to the system's clock, and the next child is number 1.
void ResetProcesses();

}  // namespace fake
