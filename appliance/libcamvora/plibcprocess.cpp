#include "libcamvora/descriptor.h"
#include "libcamvora/pidfile.h"
#include "platform/plibc.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

int PLIBCFileExist(const char* path) {
    return access(path, F_OK) == 0 ? 1 : 0;
}

pid_t PLIBCProcFork() {
    return fork();
}

// Readers see a whole number or no file.
int PLIBCProcPidFileCreate(const char* path) {
    const std::string text = std::to_string(getpid()) + "\n";
    const std::string fresh = camvora::FreshPidFile(path);
    (void)unlink(fresh.c_str());  // left by a process that was killed here
    const camvora::Descriptor file(
        open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644));
    if (!file.IsOpen()) {
        return -1;
    }
    const bool written = write(file.Number(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (written && rename(fresh.c_str(), path) == 0) {
        return 0;
    }
    (void)unlink(fresh.c_str());
    return -1;
}
