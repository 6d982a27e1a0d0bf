#include "host/uploadarea.h"

#include "host/requestids.h"

#include "platform/files.h"
#include "platform/log.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <system_error>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kReserveBytes = std::uint64_t{4} << 20;

bool IsUnfinished(const fs::path& path) {
    return path.extension() == kUnfinishedSuffix;
}

bool IsOlderThan(const fs::path& path, std::chrono::seconds age) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           std::time(nullptr) - status.st_mtime > age.count();
}

void RemoveFiles(const std::string& folder, const std::function<bool(const fs::path&)>& isUnwanted) {
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure); entry != fs::directory_iterator();
         entry.increment(failure)) {
        if (isUnwanted(entry->path()) && unlink(entry->path().c_str()) == 0) {
            CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__,
                     "Removed the upload %s: nobody took it\n", entry->path().c_str());
        }
    }
}

}  // namespace

void UploadArea::Make() const {
    (void)CreateFullDirPath(folder_.substr(0, folder_.rfind('/')));
    (void)mkdir(folder_.c_str(), S_IRWXU);
    if (!IsExistDir(folder_)) {
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Failed to make the upload area %s\n",
                 folder_.c_str());
    }
}

std::string UploadArea::NewPath() const {
    return folder_ + "/" + NewRequestId();
}

bool UploadArea::HasRoomFor(std::uint64_t sizeBytes) const {
    struct statvfs status {};
    return statvfs(folder_.c_str(), &status) != 0 ||  // the write will tell
           std::uint64_t{status.f_bavail} * status.f_frsize >= sizeBytes + kReserveBytes;
}

void UploadArea::RemoveUnfinished() const {
    RemoveFiles(folder_, IsUnfinished);
}

void UploadArea::RemoveOlderThan(std::chrono::seconds age) const {
    RemoveFiles(folder_,
                [age](const fs::path& path) { return !IsUnfinished(path) && IsOlderThan(path, age); });
}

}  // namespace host
