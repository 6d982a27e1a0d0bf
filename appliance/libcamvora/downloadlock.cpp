#include "libcamvora/downloadlock.h"

#include <poll.h>

extern "C" {
#include <sys/pidfd.h>  // says so itself only in newer C libraries
}

#include <csignal>

namespace camvora {

bool IsDownloading(const std::string& path) {
    return IsReadyLockHeld(path);
}

// A handle that was had before the second look belongs to the process that this look sees.
void EndDownloader(const std::string& path, std::chrono::milliseconds limit) {
    const pid_t pid = ReadyLockHolder(path);
    const Descriptor process(pid > 0 ? pidfd_open(pid, 0) : -1);
    if (!process.IsOpen() || ReadyLockHolder(path) != pid) {
        return;
    }
    (void)pidfd_send_signal(process.Number(), SIGKILL, nullptr, 0);
    struct pollfd ended = {process.Number(), POLLIN, 0};
    (void)poll(&ended, 1, static_cast<int>(limit.count()));
}

}  // namespace camvora
