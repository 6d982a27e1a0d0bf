// Where releases come from: the file etc/releases.conf.
#pragma once

#include <string>

namespace camvora {

struct ReleasesConf {
    std::string feedUrl;      // of the folder with the indexes; empty when there is no feed
    std::string feedKeyFile;  // the public key of those who publish, as PEM
    long long downloadLimitBytes = 0;
};

// Reads the file at `path`. What is missing in it has its default.
ReleasesConf ReadReleasesConf(const char* path);

}  // namespace camvora
