#include "platform/files.h"

#include "libcamvora/lockguards.h"
#include "libcamvora/lockqueue.h"
#include "libcamvora/paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

bool IsFileExist(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

bool IsExistDir(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// A lock file that somebody holds by now is left to the holder.
int RemoveFileIfExist(const std::string& path) {
    const std::string guard = camvora::GuardOf(camvora::kGuardFolder, path);
    if (IsFileExist(guard)) {
        return camvora::RemoveUnlessQueued(guard, path);
    }
    return unlink(path.c_str()) == 0 || errno == ENOENT ? 0 : -1;
}

std::string itos(long long number) {
    return std::to_string(number);
}
