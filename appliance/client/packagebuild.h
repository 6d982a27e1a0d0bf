// Making a package file from an add-on's tree.
#pragma once

#include <cstdint>
#include <string>

namespace client {

struct BuiltPackage {
    std::string package;  // the add-on
    std::string version;
    std::uint64_t files = 0;  // with links and folders
};

// Packs the files in `treeDir`, with a conf and an INFO made from `settingsFile`, into `packageFile`. The
// same input gives the same bytes. What had that name is replaced when the package is whole.
//   throws  Failure: kNotFound when there is no tree or no such file, kUsage when a setting is missing or
//           wrong, kRefused when no appliance would take the package, kFailed when something cannot be read
//           or written
BuiltPackage BuildPackage(const std::string& treeDir, const std::string& settingsFile,
                          const std::string& packageFile);

}  // namespace client
