#include "libcamvora/lockguards.h"

#include "libcamvora/descriptor.h"
#include "libcamvora/paths.h"
#include "libcamvora/pidfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace camvora {

namespace {

constexpr char kEscape = '%';
constexpr char kEscapedSlash[] = "%2F";
constexpr char kEscapedEscape[] = "%25";
constexpr std::string_view kLockSuffix = ".lock";
constexpr std::string_view kPidSuffix = ".pid";

constexpr std::chrono::seconds kRemoveLimit{1};

// The sign that somebody is inside. It does not exclude: what does is the guard.
bool ShowLockFile(const std::string& path) {
    return Descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600))
        .IsOpen();
}

// Most guards guard nothing at the time.
void SweepFile(const std::string& guard, const std::string& file) {
    if (access(file.c_str(), F_OK) == 0) {
        (void)RemoveUnlessQueued(guard, file, std::chrono::steady_clock::now());
    }
}

// An action process writes its pid file beside the lock file under which it works.
void Sweep(const std::string& guard, std::string file) {
    SweepFile(guard, file);
    const std::size_t stem = file.size() - std::min(file.size(), kLockSuffix.size());
    if (file.compare(stem, std::string::npos, kLockSuffix) == 0) {
        const std::string pidFile = file.replace(stem, std::string::npos, kPidSuffix);
        SweepFile(guard, pidFile);
        SweepFile(guard, FreshPidFile(pidFile));
    }
}

}  // namespace

std::string GuardOf(const std::string& folder, const std::string& path) {
    std::string name;
    for (const char character : path) {
        if (character == '/') {
            name += kEscapedSlash;
        } else if (character == kEscape) {
            name += kEscapedEscape;
        } else {
            name += character;
        }
    }
    return folder + "/" + name;
}

std::string GuardedBy(const std::string& name) {
    std::string path;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] != kEscape) {
            path += name[i];
            continue;
        }
        path += name.compare(i, sizeof(kEscapedSlash) - 1, kEscapedSlash) == 0 ? '/' : kEscape;
        i += sizeof(kEscapedSlash) - 2;
    }
    return path;
}

int EnterGuarded(const std::string& folder, const std::string& path, Deadline deadline) {
    const std::string guard = GuardOf(folder, path);
    const int handle = EnterLockQueue(guard, deadline);
    if (handle >= 0 && ShowLockFile(path)) {
        return handle;
    }
    if (handle >= 0) {
        LeaveLockQueue(handle);
    }
    // A holder that left meanwhile has spared the file for us, as the next one.
    (void)RemoveUnlessQueued(guard, path, deadline);
    return -1;
}

int RemoveGuarded(const std::string& folder, const std::string& path) {
    const std::string guard = GuardOf(folder, path);
    if (access(guard.c_str(), F_OK) == 0) {
        return RemoveUnlessQueued(guard, path, std::chrono::steady_clock::now() + kRemoveLimit);
    }
    return unlink(path.c_str()) == 0 || errno == ENOENT ? 0 : -1;
}

void SweepLockFiles(const std::string& folder) {
    std::error_code error;
    std::filesystem::directory_iterator guard(folder, error);
    for (; guard != std::filesystem::directory_iterator(); guard.increment(error)) {
        Sweep(guard->path(), GuardedBy(guard->path().filename()));
    }
}

void SweepLockFiles() {
    SweepLockFiles(kGuardFolder);
}

}  // namespace camvora
