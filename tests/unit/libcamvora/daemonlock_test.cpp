#include "libcamvora/daemonlock.h"

#include "children.h"
#include "temporaryfolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace {

using camvora::IsLockHeld;

// Locks the file as a daemon does and keeps it until the process ends.
bool Lock(const std::string& path) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    return file >= 0 && fcntl(file, F_OFD_SETLK, &lock) == 0;
}

TEST(DaemonLock, IsHeldAsLongAsItsProcessLives) {
    const TemporaryFolder folder;
    const std::string path = folder.PathOf("daemon-11.lock");
    EXPECT_FALSE(IsLockHeld(path));
    EXPECT_TRUE(SucceedsInChild([&path] {
        return Lock(path) && IsLockHeld(path) && SucceedsInChild([&path] { return IsLockHeld(path); });
    }));
    EXPECT_FALSE(IsLockHeld(path));  // the file is still there
}

TEST(DaemonLock, IsNotHeldOnWhatIsNoFile) {
    const TemporaryFolder folder;
    ASSERT_EQ(0, mkfifo(folder.PathOf("fifo").c_str(), 0600));
    EXPECT_FALSE(IsLockHeld(folder.PathOf("fifo")));
    ASSERT_TRUE(SucceedsInChild([&folder] {
        (void)!symlink(folder.PathOf("held").c_str(), folder.PathOf("link").c_str());
        return Lock(folder.PathOf("held")) && !IsLockHeld(folder.PathOf("link"));
    }));
}

}  // namespace
