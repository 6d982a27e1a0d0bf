// Stand-ins for fork, waitpid, setsid, _exit, sleep and time: the linker leads the test program's calls of
// them here first. The first four do what they always do, but fork and waitpid fail with the errno that a
// test has scripted. Each but time is recorded: waitpid when it returns, and naming the child by its number
// ("waitpid child1").
//
// The clock stands still: sleep moves it on by its seconds, or by its scripted answer, instead of waiting. A
// forked child goes on with a copy of it.
#pragma once

namespace fake {

// For Session: the next child is number 1.
void ResetProcesses();

}  // namespace fake
