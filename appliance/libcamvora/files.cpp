#include "platform/files.h"

#include "libcamvora/lockguards.h"
#include "libcamvora/paths.h"

#include <sys/stat.h>
#include <unistd.h>

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

int CreateFullDirPath(const std::string& path) {
    constexpr mode_t kMode = 0755;
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        (void)mkdir(path.substr(0, end).c_str(), kMode);  // the last one tells
    }
    (void)mkdir(path.c_str(), kMode);
    return IsExistDir(path) ? 0 : -1;
}

std::string itos(long long number) {
    return std::to_string(number);
}
