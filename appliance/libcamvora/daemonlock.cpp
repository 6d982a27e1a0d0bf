#include "libcamvora/daemonlock.h"

#include <fcntl.h>

namespace camvora {

namespace {

constexpr off_t kRunsByte = 0;
constexpr off_t kReadyByte = 1;

struct flock OneByte(off_t position) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = position;
    lock.l_len = 1;
    return lock;
}

bool Lock(const Descriptor& file, off_t position) {
    struct flock lock = OneByte(position);
    return file.IsOpen() && fcntl(file.Number(), F_SETLK, &lock) == 0;
}

// The lock that another process has on that byte; of type F_UNLCK when none has.
struct flock FindLock(const std::string& path, off_t position) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct flock lock = OneByte(position);
    if (!file.IsOpen() || fcntl(file.Number(), F_GETLK, &lock) != 0) {
        lock.l_type = F_UNLCK;
    }
    return lock;
}

pid_t Holder(const std::string& path, off_t position) {
    const struct flock lock = FindLock(path, position);
    return lock.l_type != F_UNLCK ? lock.l_pid : 0;
}

}  // namespace

DaemonLock::DaemonLock(const std::string& path)
    : file_(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600)) {}

bool DaemonLock::Hold() {
    return Lock(file_, kRunsByte);
}

bool DaemonLock::HoldReady() {
    return Lock(file_, kReadyByte);
}

pid_t DaemonLockHolder(const std::string& path) {
    return Holder(path, kRunsByte);
}

pid_t ReadyLockHolder(const std::string& path) {
    return Holder(path, kReadyByte);
}

bool IsReadyLockHeld(const std::string& path) {
    return FindLock(path, kReadyByte).l_type != F_UNLCK;
}

}  // namespace camvora
