#include "libcamvora/treeusage.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace camvora {

namespace {

void Add(const char* path, TreeUsage& usage) {
    struct stat status {};
    if (lstat(path, &status) != 0) {
        usage.isComplete = usage.isComplete && errno == ENOENT;
        return;
    }
    ++usage.entries;
    if (S_ISREG(status.st_mode)) {
        usage.sizeBytes += status.st_size;
    } else if (!S_ISDIR(status.st_mode) && !S_ISLNK(status.st_mode)) {
        usage.hasSpecialFiles = true;
    }
}

}  // namespace

TreeUsage UsageOf(const std::string& folder) {
    TreeUsage usage;
    std::error_code failure;
    std::filesystem::recursive_directory_iterator entry(folder, failure);
    while (entry != std::filesystem::recursive_directory_iterator()) {
        Add(entry->path().c_str(), usage);
        entry.increment(failure);  // makes it the end where it fails
    }
    usage.isComplete = usage.isComplete && (!failure || failure == std::errc::no_such_file_or_directory);
    return usage;
}

}  // namespace camvora
