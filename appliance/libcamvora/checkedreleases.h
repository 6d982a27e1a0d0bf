// What the last check for new releases of each add-on found, as others are shown it.
#pragma once

#include <string>
#include <vector>

namespace camvora {

struct CheckedRelease {
    std::string version;  // empty when there was none newer than the installed one
    std::string date;
    std::string notes;
    long long sizeBytes = 0;
    std::string checkedAt;  // in UTC
};

struct CheckedService {
    int service = 0;
    CheckedRelease newest;
};

// One entry for each service that was ever checked. Throws std::exception when the store cannot be read.
std::vector<CheckedService> CheckedServices();

}  // namespace camvora
