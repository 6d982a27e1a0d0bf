// Looking at processes from outside.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace e2e {

// True while the process is there, dead ones that nobody has reaped not counted.
bool IsAlive(pid_t pid);

// The processes below `ancestor` that are so, parents before their children; dead ones that nobody has reaped
// are among them.
std::vector<pid_t> Descendants(
    pid_t ancestor, const std::function<bool(pid_t)>& isSo = [](pid_t) { return true; });

std::string NameOf(pid_t pid);
int ThreadCount(pid_t pid);
int DescriptorCount(pid_t pid);

// The most memory that the process has held so far.
long PeakMemoryKiB(pid_t pid);

// Waits until `condition` holds. Returns false when it does not within `limit`.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(10));

// The whole file as text, empty when it cannot be read.
std::string ReadFile(const std::filesystem::path& path);

}  // namespace e2e
