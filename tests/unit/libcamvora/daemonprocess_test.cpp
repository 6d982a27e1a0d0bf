// Starting and ending a daemon, with a program of the tests as the daemon.
#include "libcamvora/daemonprocess.h"

#include "children.h"
#include "libcamvora/daemonlock.h"
#include "libcamvora/requestid.h"
#include "support/temporaryfolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>

namespace {

using namespace std::chrono_literals;
using camvora::DaemonLockHolder;
using camvora::EndDaemon;
using camvora::StartDaemon;
using Clock = std::chrono::steady_clock;

constexpr camvora::DaemonEntry kDaemon = {"localdisplayd", 11, -1};

class DaemonProcess : public testing::Test {
protected:
    // The program gets no arguments but the type, so a script adds the folder and what the daemon shall do.
    camvora::DaemonPlaces Places(const std::string& behaviour) const {
        const std::string name = "daemon " + behaviour;
        folder_.Write(name, "#!/bin/sh\nexec '" TEST_DAEMON "' '" + folder_.PathOf("") + "' '" + behaviour +
                                "' \"$1\"\n");
        EXPECT_EQ(0, chmod(folder_.PathOf(name).c_str(), 0700));
        return {folder_.PathOf(name), folder_.PathOf(""), 5s, 300ms};
    }

    pid_t Running() const { return DaemonLockHolder(lock_); }

    void TearDown() override {
        const pid_t pid = Running();
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }

    const TemporaryFolder folder_;
    const std::string lock_ = camvora::DaemonLockFile(folder_.PathOf(""), kDaemon.type);
};

TEST_F(DaemonProcess, IsUpWhenTheStartReturnsAndGoneWhenTheEndDoes) {
    const auto places = Places("well behaved");
    EXPECT_TRUE(EndDaemon(places, kDaemon));  // none runs
    ASSERT_TRUE(StartDaemon(places, kDaemon));
    const pid_t pid = camvora::ReadyLockHolder(lock_);
    EXPECT_GT(pid, 0);
    EXPECT_TRUE(EndDaemon(places, kDaemon));
    EXPECT_EQ(0, Running());
    int status = 0;
    EXPECT_EQ(pid, waitpid(pid, &status, WNOHANG));
    EXPECT_EQ(SIGTERM, WTERMSIG(status));
}

TEST_F(DaemonProcess, HasNothingOfItsCaller) {
    const int fd = dup2(STDERR_FILENO, 50);
    ASSERT_EQ(0, setenv("TEST_VARIABLE", "x", 1));
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    camvora::SetRequestId("0123456789abcdef");
    EXPECT_TRUE(StartDaemon(Places("well behaved"), kDaemon));
    camvora::SetRequestId("");
    sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
    unsetenv("TEST_VARIABLE");
    close(fd);
    EXPECT_EQ(
        "session leader\n/\nCAMVORA_REQUEST_ID=0123456789abcdef\n/dev/null\n/dev/null\n/dev/null\n"
        "above: none\nopen\n",
        folder_.Read("seen"));
}

struct FailureCase {
    const char* behaviour;
    std::chrono::milliseconds atMost;
};

TEST_F(DaemonProcess, IsNotLeftHalfWayWhenItDoesNotComeUp) {
    for (const FailureCase& row : {FailureCase{"ends at once", 3s}, FailureCase{"never comes up", 1500ms}}) {
        auto places = Places(row.behaviour);
        places.startLimit = row.atMost - 500ms;
        const auto begin = Clock::now();
        EXPECT_FALSE(StartDaemon(places, kDaemon)) << row.behaviour;
        EXPECT_LT(Clock::now() - begin, row.atMost) << row.behaviour;
        EXPECT_EQ(0, Running()) << row.behaviour;
        EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG)) << row.behaviour;  // no child is left
    }
    EXPECT_FALSE(StartDaemon({folder_.PathOf("no program"), folder_.PathOf(""), 5s, 5s}, kDaemon));
}

TEST_F(DaemonProcess, IsKilledWhenItIgnoresSigterm) {
    const auto places = Places("ignores SIGTERM");
    ASSERT_TRUE(StartDaemon(places, kDaemon));
    const pid_t pid = Running();
    const auto begin = Clock::now();
    EXPECT_TRUE(EndDaemon(places, kDaemon));
    EXPECT_GE(Clock::now() - begin, places.endLimit);
    EXPECT_EQ(0, Running());
    int status = 0;
    EXPECT_EQ(pid, waitpid(pid, &status, 0));
    EXPECT_EQ(SIGKILL, WTERMSIG(status));
}

TEST_F(DaemonProcess, IsKilledWhenItIsStopped) {
    const auto places = Places("well behaved");
    ASSERT_TRUE(StartDaemon(places, kDaemon));
    const pid_t pid = Running();
    kill(pid, SIGSTOP);
    EXPECT_TRUE(EndDaemon(places, kDaemon));
    EXPECT_EQ(0, Running());
    waitpid(pid, nullptr, 0);
}

TEST_F(DaemonProcess, DoesNotRunTwice) {
    const auto places = Places("well behaved");
    ASSERT_TRUE(StartDaemon(places, kDaemon));
    const pid_t first = Running();
    EXPECT_FALSE(StartDaemon(places, kDaemon));
    EXPECT_EQ(first, Running());
    EXPECT_TRUE(EndDaemon(places, kDaemon));
    waitpid(first, nullptr, 0);
}

// Whatever a pid file says, only the holder of the lock is a daemon.
TEST_F(DaemonProcess, IsNotWhatAPidFileNames) {
    const auto places = Places("well behaved");
    Background bystander([] { return true; });
    folder_.Write("localdisplayd.pid", std::to_string(bystander.Pid()) + "\n");
    EXPECT_TRUE(EndDaemon(places, kDaemon));
    EXPECT_EQ(0, waitpid(bystander.Pid(), nullptr, WNOHANG));
}

}  // namespace
