#include "addons/pkgtree.h"

#include "addons/paths.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace {

constexpr int kOpenFolders = 16;  // deeper ones cost time, not descriptors
constexpr int kNotClean = 1;
constexpr mode_t kSetIdBits = S_ISUID | S_ISGID;

// Those that an update or a restore runs.
constexpr const char* kScripts[] = {"preupgrade", "preinst", "postinst", "postupgrade", "restore"};

int CleanEntry(const char* path, const struct stat* info, int type, struct FTW* /*position*/) {
    bool isClean = type != FTW_DNR && type != FTW_NS;
    if (isClean && !S_ISREG(info->st_mode) && !S_ISDIR(info->st_mode)) {
        isClean = unlink(path) == 0;
    } else if (isClean && (info->st_mode & kSetIdBits) != 0) {
        isClean = chmod(path, info->st_mode & ~(S_IFMT | kSetIdBits)) == 0;
    }
    return isClean ? 0 : kNotClean;
}

bool IsAbsentOr(mode_t type, const std::string& path) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0) {
        return errno == ENOENT;
    }
    return (info.st_mode & S_IFMT) == type;
}

}  // namespace

bool RemoveSpecialFiles(const std::string& workDir) {
    const int result = nftw(workDir.c_str(), CleanEntry, kOpenFolders, FTW_PHYS);
    return result == 0 || (result == -1 && errno == ENOENT);
}

// Each folder is looked at before what lies in it.
bool IsTreeSound(const std::string& workDir, const std::string& tree) {
    const std::string top = workDir + "/" + tree;
    const std::string scripts = top + "/" + kScriptFolder;
    return IsAbsentOr(S_IFDIR, workDir) && IsAbsentOr(S_IFREG, workDir + "/" + kInfoName) &&
           IsAbsentOr(S_IFDIR, top) && IsAbsentOr(S_IFREG, top + "/" + kConfName) &&
           IsAbsentOr(S_IFDIR, scripts) &&
           std::all_of(std::begin(kScripts), std::end(kScripts),
                       [&scripts](const char* name) { return IsAbsentOr(S_IFREG, scripts + "/" + name); });
}
