#include "addons/treeswap.h"

#include "platform/files.h"
#include "platform/log.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

constexpr int kOpenFolders = 16;  // deeper ones cost time, not descriptors
constexpr int kNotOnDisk = 1;
constexpr mode_t kFolderMode = 0755;

long entriesSeen = 0;  // by the present walk, which hands nothing through

std::string Aside(const std::string& place) {
    return place + ".aside";
}

std::string Dropped(const std::string& place) {
    return place + ".dropped";
}

std::string ParentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

bool IsAbsent(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) != 0 && errno == ENOENT;
}

bool IsFolder(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

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
    ++entriesSeen;
    if (type == FTW_DNR || type == FTW_NS) {
        return kNotOnDisk;
    }
    const bool hasContent = S_ISREG(info->st_mode) || S_ISDIR(info->st_mode);
    return !hasContent || Sync(path) ? 0 : kNotOnDisk;
}

// Files before the folders that name them.
bool SyncTree(const std::string& tree) {
    entriesSeen = 0;
    return nftw(tree.c_str(), SyncEntry, kOpenFolders, FTW_PHYS | FTW_DEPTH) == 0;
}

int CountEntry(const char* /*path*/, const struct stat* /*info*/, int /*type*/, struct FTW* /*position*/) {
    ++entriesSeen;
    return 0;
}

long CountEntries(const std::string& tree) {
    entriesSeen = 0;
    (void)nftw(tree.c_str(), CountEntry, kOpenFolders, FTW_PHYS);
    return entriesSeen;
}

bool Rename(const std::string& from, const std::string& to) {
    return rename(from.c_str(), to.c_str()) == 0;
}

// The place is without a tree from its first rename to its second.
bool PutAsideBack(const std::string& place) {
    const std::string dropped = Dropped(place);
    const bool isFree = CVRm(dropped) == 0 && (IsAbsent(place) || Rename(place, dropped));
    if (!isFree || !Rename(Aside(place), place)) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "PutBack", "Failed to put back [%s].\n",
                 place.c_str());
        return false;
    }
    (void)rmdir(place.c_str());  // succeeds where no tree was installed
    (void)Sync(ParentOf(place).c_str());
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "PutBack", "Put back [%s].\n", place.c_str());
    (void)CVRm(dropped);
    return true;
}

}  // namespace

TreeSwap::TreeSwap(std::string place, std::string fresh)
    : place_(std::move(place)), fresh_(std::move(fresh)) {}

bool TreeSwap::Prepare() {
    const bool isOnDisk = IsFolder(fresh_) && SyncTree(fresh_);
    freshEntries_ = entriesSeen;
    return isOnDisk;
}

bool TreeSwap::SetAside() const {
    const std::string aside = Aside(place_);
    const bool isAside = IsAbsent(place_) ? mkdir(aside.c_str(), kFolderMode) == 0 : Rename(place_, aside);
    return isAside && Sync(ParentOf(place_).c_str());
}

bool TreeSwap::IsPlaceFree() const {
    return IsAbsent(place_);
}

// A move to another file system copies, and has nothing on the disk by itself.
bool TreeSwap::Seal() const {
    if (!IsFolder(place_) || !IsAbsent(fresh_) || !SyncTree(place_) || !Sync(ParentOf(place_).c_str()) ||
        !Rename(Aside(place_), Dropped(place_))) {
        return false;
    }
    (void)Sync(ParentOf(place_).c_str());  // before anything of it is removed
    return true;
}

void TreeSwap::PutBack() const {
    if (CountEntries(fresh_) != freshEntries_) {
        (void)CVRm(fresh_);
    }
    if (!IsAbsent(Aside(place_))) {
        (void)PutAsideBack(place_);
    }
}

void TreeSwap::Drop() const {
    (void)CVRm(Dropped(place_));
}

bool RecoverTree(const std::string& place, const std::string& fresh1, const std::string& fresh2) {
    if (!IsAbsent(Aside(place))) {
        return CVRm(fresh1) == 0 && CVRm(fresh2) == 0 && PutAsideBack(place);
    }
    return IsAbsent(Dropped(place)) || CVRm(Dropped(place)) == 0;
}
