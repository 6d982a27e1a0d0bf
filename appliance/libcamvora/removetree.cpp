// The removal of trees of any depth, with hostile names and modes, that somebody else has made.
//
// Nothing is followed: each step names one entry of a folder that is open. A folder within a folder is not
// descended into but moved up to the top first, so that two folders are open at a time however deep the tree
// is. What is left by a process that is killed meanwhile is a tree like any other.
#include "libcamvora/descriptor.h"
#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

namespace {

using camvora::Descriptor;
using Listing = std::unique_ptr<DIR, int (*)(DIR*)>;

// Opens the folder, whatever its mode, and lets the owner read and change it. Null when it is no folder.
Listing OpenFolder(int parent, const char* name) {
    const Descriptor place(openat(parent, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (place.IsOpen() && fstat(place.Number(), &status) == 0 && (~status.st_mode & S_IRWXU) != 0) {
        (void)chmod(("/proc/self/fd/" + std::to_string(place.Number())).c_str(), S_IRWXU);
    }
    const int folder = openat(place.Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return {folder < 0 ? nullptr : fdopendir(folder), &closedir};
}

// Calls `work` with each entry of the folder until it returns false. Returns false then.
bool ForEachEntry(const Listing& folder, const std::function<bool(const char*)>& work) {
    rewinddir(folder.get());
    while (const dirent* entry = readdir(folder.get())) {
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0 && !work(name)) {
            return false;
        }
    }
    return true;
}

bool RemoveFile(int folder, const char* name) {
    return unlinkat(folder, name, 0) == 0 || errno == ENOENT;
}

class TreeRemoval {
public:
    explicit TreeRemoval(const Listing& top) : top_(top), fd_(dirfd(top.get())) {}

    // Removes all that is in the tree. Returns false when something cannot be removed.
    bool Run() {
        bool wasEmpty = false;
        while (!wasEmpty) {
            wasEmpty = true;
            const bool removed = ForEachEntry(top_, [&](const char* name) {
                wasEmpty = false;
                return RemoveFile(fd_, name) || RemoveFolder(name);
            });
            if (!removed) {
                return false;
            }
        }
        return true;
    }

private:
    bool RemoveFolder(const char* name) {
        const Listing folder = OpenFolder(fd_, name);
        return folder != nullptr &&
               ForEachEntry(folder,
                            [&](const char* child) {
                                return RemoveFile(dirfd(folder.get()), child) ||
                                       MoveUp(dirfd(folder.get()), child);
                            }) &&
               unlinkat(fd_, name, AT_REMOVEDIR) == 0;
    }

    // A folder can be moved by whom may change it.
    bool MoveUp(int folder, const char* name) {
        if (OpenFolder(folder, name) == nullptr) {
            return false;
        }
        while (renameat(folder, name, fd_, std::to_string(nextName_).c_str()) != 0) {
            if (errno != EEXIST && errno != ENOTEMPTY && errno != ENOTDIR) {
                return false;
            }
            ++nextName_;  // that one is taken
        }
        return true;
    }

    const Listing& top_;
    const int fd_;
    unsigned long nextName_ = 0;
};

std::string WithoutFinalSlashes(const std::string& path) {
    return path.substr(0, path.find_last_not_of('/') + 1);
}

}  // namespace

int CVRm(const std::string& path) {
    const std::string name = WithoutFinalSlashes(path);
    if (name.empty()) {
        return -1;
    }
    if (RemoveFile(AT_FDCWD, name.c_str())) {
        return 0;
    }
    const Listing top = OpenFolder(AT_FDCWD, name.c_str());
    const bool removed =
        top != nullptr && TreeRemoval(top).Run() && unlinkat(AT_FDCWD, name.c_str(), AT_REMOVEDIR) == 0;
    return removed ? 0 : -1;
}
