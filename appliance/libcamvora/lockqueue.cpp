#include "libcamvora/lockqueue.h"

#include "libcamvora/descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace camvora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The guard file: the last ticket drawn, as one number. Byte kCounterByte locks that number; byte
// kFirstTicket + N is ticket N. The lock bytes lie behind the end of the file.
constexpr off_t kCounterByte = 1 << 10;
constexpr off_t kFirstTicket = 1 << 11;
constexpr milliseconds kCounterLimit{100};

// Where no event tells of a change: there is no watch, or a process has died, whose locks are freed only
// after the event of the close.
constexpr milliseconds kLookAgain{50};

// The open-file-description lock on a range of bytes; freed when its last descriptor is closed.
bool SetLock(int fd, short type, off_t start, off_t length) {
    struct flock range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = start;
    range.l_len = length;
    return fcntl(fd, F_OFD_SETLK, &range) == 0;
}

// True when another open file description holds a lock on a byte of the range.
bool IsLockedByOthers(int fd, off_t start, off_t length) {
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = start;
    range.l_len = length;
    return fcntl(fd, F_OFD_GETLK, &range) != 0 || range.l_type != F_UNLCK;
}

int RemainingMs(Deadline deadline) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
    return static_cast<int>(std::max<milliseconds::rep>(left.count(), 0));
}

// Sleeps until the guard file is written or closed by somebody, but no longer than until the next look.
class ChangeWatch {
public:
    explicit ChangeWatch(const std::string& file) : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        (void)inotify_add_watch(events_.Number(), file.c_str(), IN_MODIFY | IN_CLOSE_WRITE);
    }

    void Wait(Deadline deadline) const {
        struct pollfd changed = {events_.Number(), POLLIN, 0};
        if (poll(&changed, 1, std::min(RemainingMs(deadline), static_cast<int>(kLookAgain.count()))) > 0) {
            char events[4096];
            (void)!read(events_.Number(), events, sizeof(events));
        }
    }

private:
    const Descriptor events_;
};

// The counter is locked for the length of a few system calls; only a stopped process keeps it longer. So it
// is waited for a little even by those who would not wait for the section.
bool LockCounter(int fd, Deadline deadline) {
    deadline = std::max(deadline, steady_clock::now() + kCounterLimit);
    while (!SetLock(fd, F_WRLCK, kCounterByte, 1)) {
        if ((errno != EAGAIN && errno != EACCES) || RemainingMs(deadline) == 0) {
            return false;
        }
        (void)poll(nullptr, 0, 1);
    }
    return true;
}

// Locks the byte of a new ticket. Returns its offset, or -1.
off_t DrawTicket(int fd, Deadline deadline) {
    if (!LockCounter(fd, deadline)) {
        return -1;
    }
    std::int64_t last = 0;
    const ssize_t got = pread(fd, &last, sizeof(last), 0);
    ++last;
    off_t ticket = kFirstTicket + last;
    if (got < 0 || pwrite(fd, &last, sizeof(last), 0) != sizeof(last) || !SetLock(fd, F_WRLCK, ticket, 1)) {
        ticket = -1;
    }
    (void)SetLock(fd, F_UNLCK, kCounterByte, 1);
    return ticket;
}

bool WaitForTurn(int fd, off_t ticket, const std::string& guardFile, Deadline deadline) {
    const auto isFirst = [fd, ticket] { return !IsLockedByOthers(fd, kFirstTicket, ticket - kFirstTicket); };
    if (isFirst()) {
        return true;
    }
    const ChangeWatch watch(guardFile);
    while (!isFirst()) {
        if (RemainingMs(deadline) == 0) {
            return false;
        }
        watch.Wait(deadline);
    }
    return true;
}

int OpenGuard(const std::string& guardFile) {
    return open(guardFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
}

}  // namespace

int EnterLockQueue(const std::string& guardFile, Deadline deadline) {
    const int fd = OpenGuard(guardFile);
    if (fd < 0) {
        return -1;
    }
    const off_t ticket = DrawTicket(fd, deadline);
    if (ticket < 0 || !WaitForTurn(fd, ticket, guardFile, deadline)) {
        LeaveLockQueue(fd);
        return -1;
    }
    return fd;
}

void LeaveLockQueue(int fd) {
    (void)SetLock(fd, F_UNLCK, 0, 0);
    const char wake = 0;
    (void)!pwrite(fd, &wake, 1, sizeof(std::int64_t));
    (void)close(fd);
}

int RemoveUnlessQueued(const std::string& guardFile, const std::string& file, Deadline deadline) {
    const Descriptor guard(OpenGuard(guardFile));
    if (!guard.IsOpen() || !LockCounter(guard.Number(), deadline)) {
        return -1;
    }
    const bool queued = IsLockedByOthers(guard.Number(), kFirstTicket, 0);
    return queued || unlink(file.c_str()) == 0 || errno == ENOENT ? 0 : -1;
}

}  // namespace camvora
