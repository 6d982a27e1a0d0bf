#include "libcamvora/daemonlock.h"

#include "children.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace {

using camvora::DaemonLockHolder;
using camvora::HoldDaemonLock;
using camvora::HoldReadyLock;
using camvora::ReadyLockHolder;

class DaemonLock : public testing::Test {
protected:
    const TemporaryFolder folder_;
    const std::string path_ = folder_.PathOf("daemon-11.lock");
};

TEST_F(DaemonLock, NamesItsProcessAsLongAsThatLives) {
    EXPECT_EQ(0, DaemonLockHolder(path_));
    Background daemon([this] { return HoldDaemonLock(path_); });
    ASSERT_TRUE(daemon.Worked());
    EXPECT_EQ(daemon.Pid(), DaemonLockHolder(path_));
    EXPECT_EQ(0, ReadyLockHolder(path_));
    EXPECT_FALSE(SucceedsInChild([this] { return HoldDaemonLock(path_); }));
    daemon.Kill();
    EXPECT_EQ(0, DaemonLockHolder(path_));  // the file is still there
    EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(DaemonLock, TellsWhenItsProcessIsUp) {
    Background daemon([this] { return HoldDaemonLock(path_) && HoldReadyLock(path_); });
    ASSERT_TRUE(daemon.Worked());
    EXPECT_EQ(daemon.Pid(), ReadyLockHolder(path_));
    EXPECT_EQ(daemon.Pid(), DaemonLockHolder(path_));
}

TEST_F(DaemonLock, IsNotInheritedByAChild) {
    Background daemon([this] {
        return HoldDaemonLock(path_) &&
               SucceedsInChild([this] { return DaemonLockHolder(path_) == getppid(); });
    });
    EXPECT_TRUE(daemon.Worked());
    EXPECT_EQ(daemon.Pid(), DaemonLockHolder(path_));
}

TEST_F(DaemonLock, IsNotHeldOnWhatIsNoFile) {
    ASSERT_EQ(0, mkfifo(folder_.PathOf("fifo").c_str(), 0600));
    EXPECT_EQ(0, DaemonLockHolder(folder_.PathOf("fifo")));
    Background daemon([this] { return HoldDaemonLock(path_); });
    ASSERT_TRUE(daemon.Worked());
    std::filesystem::create_symlink(path_, folder_.PathOf("link"));
    EXPECT_EQ(0, DaemonLockHolder(folder_.PathOf("link")));
    EXPECT_FALSE(SucceedsInChild([this] { return HoldDaemonLock(folder_.PathOf("link")); }));
}

}  // namespace
