#include "support/listing.h"

#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

std::string ContentOf(const fs::path& path, mode_t mode) {
    if (S_ISLNK(mode)) {
        return fs::read_symlink(path);
    }
    if (!S_ISREG(mode)) {
        return "";
    }
    std::string content(fs::file_size(path), '\0');
    std::ifstream(path, std::ios::binary).read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

std::string Describe(const fs::path& path) {
    struct stat status {};
    (void)lstat(path.c_str(), &status);
    return DescribeEntry(status.st_mode, ContentOf(path, status.st_mode));
}

}  // namespace

std::string DescribeEntry(mode_t mode, const std::string& content) {
    return std::to_string(mode) + " " + std::to_string(content.size()) + " " +
           std::to_string(std::hash<std::string>()(content));
}

Listing ListingOf(const fs::path& folder, const std::set<std::string>& leftOut) {
    Listing listing;
    for (fs::recursive_directory_iterator entry(folder); entry != fs::recursive_directory_iterator();
         ++entry) {
        const std::string path = entry->path().lexically_relative(folder);
        if (leftOut.count(path) != 0) {
            entry.disable_recursion_pending();
        } else {
            listing[path] = Describe(entry->path());
        }
    }
    return listing;
}

std::vector<std::string> ChangedPaths(const Listing& before, const Listing& after) {
    Listing changed;
    std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(),
                                  std::inserter(changed, changed.end()));
    std::vector<std::string> paths;
    for (const auto& [path, entry] : changed) {
        paths.push_back(path);
    }
    return paths;
}
