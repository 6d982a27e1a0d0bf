#include "libcamvora/filestamp.h"

#include <sys/stat.h>

namespace camvora {

bool FileStamp::IsSettled() const {
    constexpr std::time_t kCoarsestStepS = 2;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec - written.tv_sec > kCoarsestStepS;
}

bool operator==(const FileStamp& one, const FileStamp& other) {
    return one.inode == other.inode && one.sizeBytes == other.sizeBytes &&
           one.written.tv_sec == other.written.tv_sec && one.written.tv_nsec == other.written.tv_nsec;
}

std::optional<FileStamp> StampOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileStamp{status.st_ino, status.st_size, status.st_mtim};
}

}  // namespace camvora
