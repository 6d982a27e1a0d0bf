#include "addons/disktree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace {

bool IsEntry(const dirent& entry) {
    return std::strcmp(entry.d_name, ".") != 0 && std::strcmp(entry.d_name, "..") != 0;
}

// Not every file system tells what an entry is.
bool IsFolderEntry(const std::string& path, const dirent& entry) {
    return entry.d_type == DT_DIR || (entry.d_type == DT_UNKNOWN && IsFolder(path));
}

// How many entries the folder has itself; appends the folders among them to `folders`.
long CountIn(const std::string& folder, std::vector<std::string>& folders) {
    long count = 0;
    DIR* const listing = opendir(folder.c_str());
    while (const dirent* entry = listing != nullptr ? readdir(listing) : nullptr) {
        if (!IsEntry(*entry)) {
            continue;
        }
        ++count;
        const std::string path = folder + "/" + entry->d_name;
        if (IsFolderEntry(path, *entry)) {
            folders.push_back(path);
        }
    }
    if (listing != nullptr) {
        (void)closedir(listing);
    }
    return count;
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

bool SyncParent(const std::string& path) {
    const std::string parent = path.substr(0, path.rfind('/'));
    const int folder = open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
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
    long count = 0;
    std::vector<std::string> folders = {path};
    while (!folders.empty()) {
        const std::string folder = folders.back();
        folders.pop_back();
        count += CountIn(folder, folders);
    }
    return count;
}
