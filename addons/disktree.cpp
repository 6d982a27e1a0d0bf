#include "addons/disktree.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr int kOpenFolders = 16;  // deeper ones cost time, not descriptors
constexpr int kNotOnDisk = 1;

long entriesCounted = 0;  // the walk hands nothing through

bool Sync(const char* path) {
    const int file = open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool isOnDisk = fsync(file) == 0;
    (void)close(file);
    return isOnDisk;
}

int SyncEntry(const char* path, const struct stat* info, int type, struct FTW* /*position*/) {
    if (type == FTW_DNR || type == FTW_NS) {
        return kNotOnDisk;
    }
    const bool hasContent = S_ISREG(info->st_mode) || S_ISDIR(info->st_mode);
    return !hasContent || Sync(path) ? 0 : kNotOnDisk;
}

int CountEntry(const char* /*path*/, const struct stat* /*info*/, int /*type*/, struct FTW* /*position*/) {
    ++entriesCounted;
    return 0;
}

}  // namespace

bool IsAbsent(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) != 0 && errno == ENOENT;
}

bool IsFolder(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool SyncFolder(const std::string& path) {
    return Sync(path.c_str());
}

// Files before the folders that name them.
bool SyncTree(const std::string& path) {
    return nftw(path.c_str(), SyncEntry, kOpenFolders, FTW_PHYS | FTW_DEPTH) == 0;
}

long CountEntries(const std::string& path) {
    entriesCounted = 0;
    (void)nftw(path.c_str(), CountEntry, kOpenFolders, FTW_PHYS);
    return entriesCounted;
}
