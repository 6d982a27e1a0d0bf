// The states of downloads, as others are shown them.
#pragma once

#include <string>
#include <vector>

namespace camvora {

struct DownloadState {
    int service = 0;
    std::string version;
    int status = 0;  // APP_DOWNLOAD_STATUS
    long long bytes = 0;
    long long sizeBytes = 0;  // 0 while it is not known
    std::string problem;      // why it failed, in words
};

// Those of all services that have one. Throws std::exception when the store cannot be read.
std::vector<DownloadState> DownloadStates();

}  // namespace camvora
