#include "addons/disktree.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr int kOpenFolders = 16;  // deeper ones cost time, not descriptors

long entriesCounted = 0;  // the walk hands nothing through

int CountEntry(const char* /*path*/, const struct stat* /*info*/, int /*type*/, struct FTW* /*position*/) {
    ++entriesCounted;
    return 0;
}

}  // namespace

bool IsAbsent(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) != 0 && errno == ENOENT;
}

bool IsPresent(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0;
}

bool IsFolder(const std::string& path) {
    return IdentityOf(path).has_value();
}

bool IsFile(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

std::optional<FolderIdentity> IdentityOf(const std::string& path) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        return std::nullopt;
    }
    return FolderIdentity{info.st_dev, info.st_ino};
}

bool operator==(const FolderIdentity& one, const FolderIdentity& other) {
    return one.device == other.device && one.number == other.number;
}

bool SyncFolder(const std::string& path) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        return false;
    }
    const bool isOnDisk = fsync(folder) == 0;
    (void)close(folder);
    return isOnDisk;
}

void SyncAll() {
    sync();
}

long CountEntries(const std::string& path) {
    entriesCounted = 0;
    (void)nftw(path.c_str(), CountEntry, kOpenFolders, FTW_PHYS);
    return entriesCounted;
}
