// Critical sections across processes, each named by a file.
// Implemented by the package library; called in any process of a request.
#pragma once

#include <string>

// Enters the critical section named by the file at `path`, which is made if absent.
//   waitLimitMs  the longest wait, in milliseconds
//   returns      a handle of 0 or more for EndCriticalSection; negative when it could not be entered,
//                with the file left to its holder
// The section ends with the process that entered it and those that it forked inside, however they end.
int BeginCriticalSection(const std::string& path, int waitLimitMs);

// Leaves the section. The holder removes the file afterwards.
void EndCriticalSection(int handle);
