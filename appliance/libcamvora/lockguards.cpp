#include "libcamvora/lockguards.h"

#include "libcamvora/lockqueue.h"
#include "libcamvora/paths.h"

#include <filesystem>

namespace camvora {

namespace {

constexpr char kEscape = '%';
constexpr char kEscapedSlash[] = "%2F";
constexpr char kEscapedEscape[] = "%25";

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

void SweepLockFiles(const std::string& folder) {
    std::error_code error;
    for (const auto& guard : std::filesystem::directory_iterator(folder, error)) {
        (void)RemoveUnlessQueued(guard.path(), GuardedBy(guard.path().filename()));
    }
}

void SweepLockFiles() {
    SweepLockFiles(kGuardFolder);
}

}  // namespace camvora
