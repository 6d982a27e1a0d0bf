// Looking at processes from outside.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace e2e {

// All processes below `ancestor`, parents before their children.
std::vector<pid_t> Descendants(pid_t ancestor);

// True while the process is there, dead ones that nobody has reaped not counted.
bool IsAlive(pid_t pid);

std::string NameOf(pid_t pid);
int ThreadCount(pid_t pid);
int DescriptorCount(pid_t pid);

// The most memory that the process has held so far.
long PeakMemoryKiB(pid_t pid);

// Waits until `condition` holds. Returns false when it does not within `limit`.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(10));

}  // namespace e2e
