#include "platform/files.h"

#include "libcamvora/lockguards.h"
#include "libcamvora/paths.h"

#include <sys/stat.h>

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
    return camvora::RemoveGuarded(camvora::kGuardFolder, path);
}

std::string itos(long long number) {
    return std::to_string(number);
}
