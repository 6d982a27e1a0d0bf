#include "support/smalldisk.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

namespace {

// Root in the new namespace is who we were: without that no file could have an owner there.
void BecomeItsRoot(uid_t user, gid_t group) {
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

// Root needs no more than a mount namespace; where even that is refused, and for anybody else, the user
// namespace gives the right to mount.
bool EnterNamespace() {
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWNS) == 0) {
        return true;
    }
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    BecomeItsRoot(user, group);
    return true;
}

}  // namespace

bool CanMountSmallDisk() {
    const pid_t pid = fork();
    if (pid == 0) {
        _exit(MountSmallDisk("/tmp", 1 << 20) ? 0 : 1);
    }
    int status = 1;
    return waitpid(pid, &status, 0) == pid && status == 0;
}

bool MountSmallDisk(const std::string& folder, std::size_t sizeBytes) {
    const std::string options = "size=" + std::to_string(sizeBytes);
    return EnterNamespace() && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

bool ResizeSmallDisk(const std::string& folder, std::size_t sizeBytes) {
    const std::string options = "size=" + std::to_string(sizeBytes);
    return mount("none", folder.c_str(), nullptr, MS_REMOUNT, options.c_str()) == 0;
}
