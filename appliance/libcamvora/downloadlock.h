// The lock of a service's downloads: one process at a time works on its files and its record.
//
// The kernel frees it with the process, however that ends, and tells which process downloads: that is how a
// download is ended. Whoever only cleans up holds the lock as well, but is not to be ended.
#pragma once

#include "libcamvora/daemonlock.h"

#include <sys/types.h>

#include <chrono>
#include <string>

namespace camvora {

// Held from one of its functions to the end of this object or of the process, not by what that forks. While
// it is held the process looks at the lock in no other way, as that would free it.
class DownloadLock {
public:
    // The lock in the file at `path`, which is made if absent.
    explicit DownloadLock(const std::string& path) : lock_(path) {}

    // Returns false when another process holds it, or the file cannot be had. From now on others may kill
    // this process.
    bool HoldToDownload() { return lock_.Hold() && lock_.HoldReady(); }

    // The same for work that is not to be ended.
    bool HoldToCleanUp() { return lock_.Hold(); }

private:
    DaemonLock lock_;
};

// True while a process downloads.
bool IsDownloading(const std::string& path);

// Kills the process that downloads, if there is one, and waits until it is gone, for `limit` at most.
void EndDownloader(const std::string& path, std::chrono::milliseconds limit);

}  // namespace camvora
