// A lock file held for the length of a block.
#pragma once

#include <string>

// Enters the critical section named by a file and, where it was entered, leaves it at the end and then
// removes the file. Where it was not, the file is left to its holder. Not to be carried into a forked child
// that returns.
class ScopedLockFile {
public:
    // Waits for the section at most `waitLimitMs` milliseconds.
    ScopedLockFile(std::string path, int waitLimitMs);
    ~ScopedLockFile();
    ScopedLockFile(const ScopedLockFile&) = delete;
    ScopedLockFile& operator=(const ScopedLockFile&) = delete;

    bool IsHeld() const { return handle_ >= 0; }

    const std::string& Path() const { return path_; }

private:
    const std::string path_;
    const int handle_;
};
