// Starting and ending a daemon, with a program of the tests as the daemon.
#include "libcamvora/daemonprocess.h"

#include "children.h"
#include "libcamvora/daemonlock.h"
#include "libcamvora/requestid.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using camvora::DaemonLock;
using camvora::EndDaemons;
using camvora::StartDaemon;
using Clock = std::chrono::steady_clock;

constexpr camvora::DaemonEntry kDaemon = {"localdisplayd", 11, 12, 11};
constexpr camvora::DaemonEntry kHelper = {"localdisplayhelperd", 12, -1, 11};

class DaemonProcess : public testing::Test {
protected:
    // The name of the daemon's program says what it shall do.
    camvora::DaemonPlaces Places(const std::string& behaviour) const {
        fs::create_symlink(TEST_DAEMON, folder_.PathOf(behaviour));
        return {folder_.PathOf(behaviour), folder_.PathOf(""), 5s, 300ms};
    }

    pid_t Running() const { return camvora::DaemonLockHolder(lock_); }
    std::string OfDaemon(const std::string& file) const {
        return "/proc/" + std::to_string(Running()) + "/" + file;
    }
    bool Has(const std::string& file, const std::string& text) const {
        std::ifstream stream(OfDaemon(file));
        const std::string content(std::istreambuf_iterator<char>(stream), {});
        return content.find(text) != std::string::npos;
    }

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
    for (const auto& [behaviour, signal] :
         {std::pair("well behaved", SIGTERM), std::pair("ignores SIGTERM", SIGKILL)}) {
        SCOPED_TRACE(behaviour);
        const auto places = Places(behaviour);
        EXPECT_TRUE(EndDaemons(places, {&kDaemon}));  // none runs
        ASSERT_TRUE(StartDaemon(places, kDaemon));
        folder_.Write("localdisplayd.pid", "1\n");
        const pid_t pid = camvora::ReadyLockHolder(lock_);
        EXPECT_EQ(Running(), pid);
        const auto begin = Clock::now();
        EXPECT_TRUE(EndDaemons(places, {&kDaemon}));
        EXPECT_FALSE(fs::exists(folder_.PathOf("localdisplayd.pid")));
        EXPECT_GE(Clock::now() - begin, signal == SIGKILL ? 300ms : 0ms);
        EXPECT_EQ(0, Running());
        int status = 0;
        EXPECT_EQ(pid, waitpid(pid, &status, WNOHANG));
        EXPECT_EQ(signal, WTERMSIG(status));
    }
}

TEST_F(DaemonProcess, EndsTogetherWithItsHelperInTheTimeOfOne) {
    auto places = Places("ignores SIGTERM");
    places.endLimit = 1s;
    ASSERT_TRUE(StartDaemon(places, kDaemon));
    ASSERT_TRUE(StartDaemon(places, kHelper));
    const auto begin = Clock::now();
    EXPECT_TRUE(EndDaemons(places, {&kDaemon, &kHelper}));
    EXPECT_LT(Clock::now() - begin, 1900ms);
    EXPECT_EQ(0, camvora::DaemonLockHolder(camvora::DaemonLockFile(folder_.PathOf(""), kHelper.type)));
}

TEST_F(DaemonProcess, HasNothingOfItsCaller) {
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
    EXPECT_EQ(Running(), getsid(Running()));
    EXPECT_EQ("/", fs::read_symlink(OfDaemon("cwd")));
    EXPECT_TRUE(Has("environ", "CAMVORA_REQUEST_ID=0123456789abcdef"));
    EXPECT_FALSE(Has("environ", "TEST_VARIABLE"));
    EXPECT_TRUE(Has("status", "SigBlk:\t0000000000000000"));
}

TEST_F(DaemonProcess, IsNotLeftHalfWayWhenItDoesNotComeUp) {
    for (const char* behaviour : {"ends at once", "never comes up"}) {
        SCOPED_TRACE(behaviour);
        auto places = Places(behaviour);
        places.startLimit = 1s;
        const auto begin = Clock::now();
        EXPECT_FALSE(StartDaemon(places, kDaemon));
        EXPECT_LT(Clock::now() - begin, 1500ms);
        EXPECT_EQ(0, Running());
        EXPECT_EQ(-1, waitpid(-1, nullptr, WNOHANG));  // no child is left
    }
    EXPECT_FALSE(StartDaemon({folder_.PathOf("no program"), folder_.PathOf(""), 5s, 5s}, kDaemon));
}

TEST_F(DaemonProcess, DoesNotRunTwice) {
    const auto places = Places("well behaved");
    ASSERT_TRUE(StartDaemon(places, kDaemon));
    const pid_t first = Running();
    EXPECT_FALSE(SucceedsInChild([this] { return DaemonLock(lock_).Hold(); }));
    EXPECT_FALSE(StartDaemon(places, kDaemon));
    EXPECT_EQ(first, Running());
}

// Whatever a pid file says, only the holder of the lock is a daemon.
TEST_F(DaemonProcess, IsNotWhatAPidFileNames) {
    Background bystander([] { return true; });
    folder_.Write("localdisplayd.pid", std::to_string(bystander.Pid()) + "\n");
    EXPECT_TRUE(EndDaemons(Places("well behaved"), {&kDaemon}));
    EXPECT_EQ(0, waitpid(bystander.Pid(), nullptr, WNOHANG));
}

TEST_F(DaemonProcess, IsNotFoundThroughAFifoOrALink) {
    ASSERT_EQ(0, mkfifo(lock_.c_str(), 0600));
    EXPECT_EQ(0, Running());
    fs::remove(lock_);
    DaemonLock otherLock(folder_.PathOf("other.lock"));
    Background other([&otherLock] { return otherLock.Hold(); });
    ASSERT_TRUE(other.Worked());
    fs::create_symlink("other.lock", lock_);
    EXPECT_EQ(0, Running());
    fs::create_symlink("none yet", folder_.PathOf("link"));
    EXPECT_FALSE(SucceedsInChild([this] { return DaemonLock(folder_.PathOf("link")).Hold(); }));
}

}  // namespace
