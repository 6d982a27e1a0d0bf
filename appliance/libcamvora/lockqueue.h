// A queue of processes for one critical section, kept in a guard file that is never removed
// while they live.
//
// Each comer draws the next ticket and locks the byte of that number in the guard file; whoever has the
// lowest locked ticket holds the section. The kernel frees the byte when the process ends, however it ends,
// so a dead holder or waiter is passed over, and comers are served in the order of their coming.
#pragma once

#include <chrono>
#include <string>

namespace camvora {

using Deadline = std::chrono::steady_clock::time_point;

// Draws a ticket in the guard file, which is made if absent, and waits until it is the lowest. Returns a
// descriptor for LeaveLockQueue, or -1 when the deadline has passed or the guard file does not work. The
// ticket itself is waited for up to 100 ms in any case.
// Descendants that inherit the descriptor keep the section held if this process dies.
int EnterLockQueue(const std::string& guardFile, Deadline deadline);

// Gives up the ticket, for this process and all that inherited it, wakes the waiters and closes the
// descriptor.
void LeaveLockQueue(int fd);

// Removes `file` unless somebody holds the section of the guard file or waits for it; nobody can enter
// meanwhile. Returns 0 when the file is gone or spared, -1 when it could not be removed, or not be told until
// the deadline.
int RemoveUnlessQueued(const std::string& guardFile, const std::string& file, Deadline deadline);

}  // namespace camvora
