// How much a tree takes, and what is in it.
#pragma once

#include <string>

namespace camvora {

struct TreeUsage {
    long long entries = 0;
    long long sizeBytes = 0;       // of the plain files, holes counted
    bool hasSpecialFiles = false;  // anything but plain files, folders and links
    bool isComplete = true;        // otherwise something that is there could not be looked at
};

// Looks at all that is below the folder, also while it changes; follows no link.
TreeUsage UsageOf(const std::string& folder);

}  // namespace camvora
