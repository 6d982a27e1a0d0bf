// Programs that are run and waited for.
#include "libcamvora/program.h"
#include "support/temporaryfolder.h"

#include "children.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using camvora::Program;
using camvora::ProgramEnd;
using camvora::RunProgram;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

class ProgramTest : public testing::Test {
protected:
    Program Shell(const std::string& script) const {
        return {"/bin/sh", {"-c", script}, {"PATH=/usr/bin:/bin", "WORD=a b"}, output_, seconds(20)};
    }
    std::string Output() const { return folder_.Read("output"); }

    // The ids that a script has left in the file "pids", once it has.
    std::vector<pid_t> AwaitPids() const {
        while (!std::filesystem::exists(folder_.PathOf("pids"))) {
            std::this_thread::sleep_for(milliseconds(5));
        }
        std::istringstream text(folder_.Read("pids"));
        return {std::istream_iterator<pid_t>(text), std::istream_iterator<pid_t>()};
    }

    const TemporaryFolder folder_;
    const std::string output_ = folder_.PathOf("output");

    // A shell and two of its descendants that ignore what can be ignored, and stay.
    const std::string stayingGroup_ =
        "cd " + folder_.Path() + "; trap '' TERM HUP INT; (sleep 1000 & echo $! $$ > p; mv p pids; wait)";
};

bool IsGone(pid_t pid) {
    return kill(pid, 0) != 0 && errno == ESRCH;
}

TEST_F(ProgramTest, EndsWithItsStatus) {
    EXPECT_EQ(0, RunProgram(Shell("exit 0")).exitStatus);
    EXPECT_EQ(7, RunProgram(Shell("exit 7")).exitStatus);
    EXPECT_EQ(-1, RunProgram(Shell("kill -9 $$")).exitStatus);
    Program large = Shell("exec head -c 2000000 /dev/zero");
    large.fileSizeLimitBytes = 1'000'000;
    EXPECT_EQ(-1, RunProgram(large).exitStatus);
}

TEST_F(ProgramTest, ThatCannotBeRunFails) {
    folder_.Write("text", "no program");
    for (const std::string& path : {folder_.PathOf("missing"), folder_.PathOf("text"), folder_.Path()}) {
        EXPECT_EQ(-1, RunProgram({path, {}, {}, output_, seconds(20)}).exitStatus) << path;
    }
}

TEST_F(ProgramTest, HasNothingOfItsCallerAndPrintsToItsFile) {
    const int inherited = open("/dev/null", O_RDONLY);  // NOLINT(android-cloexec-open): to be inherited
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const Program program = Shell("cat; env | grep -v PWD | sort; umask; ls /proc/$$/fd; echo err >&2");
    EXPECT_EQ(0, RunProgram(program).exitStatus);
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    EXPECT_EQ("PATH=/usr/bin:/bin\nWORD=a b\n0022\n0\n1\n2\nerr\n", Output());
    close(inherited);
}

TEST_F(ProgramTest, IsEndedAtItsLimits) {
    Program slow = Shell(stayingGroup_);
    slow.timeLimit = milliseconds(300);
    const auto begin = steady_clock::now();
    EXPECT_EQ(-1, RunProgram(slow).exitStatus);
    EXPECT_LT(steady_clock::now() - begin, seconds(5));
    for (const pid_t pid : AwaitPids()) {
        EXPECT_TRUE(IsGone(pid));
    }
    Program unwanted = Shell("sleep 1000");
    unwanted.mayGoOn = [] { return false; };
    EXPECT_EQ(-1, RunProgram(unwanted).exitStatus);
}

TEST_F(ProgramTest, LeavesNothingOfItsGroup) {
    EXPECT_EQ(3, RunProgram(Shell("cd " + folder_.Path() + "; sleep 1000 & echo $! > p; mv p pids; exit 3"))
                     .exitStatus);
    EXPECT_TRUE(IsGone(AwaitPids().at(0)));
}

TEST_F(ProgramTest, MayStartADaemon) {
    EXPECT_EQ(0, RunProgram(Shell("cd " + folder_.Path() +
                                  "; setsid sh -c 'echo $$ > p; mv p pids; exec sleep 1000' & "
                                  "while [ ! -e pids ]; do sleep 0.01; done"))
                     .exitStatus);
    const pid_t daemon = AwaitPids().at(0);
    EXPECT_FALSE(IsGone(daemon));
    kill(daemon, SIGKILL);
}

// The lock stands for whatever the caller holds: it is free only when nothing works under it any more.
TEST_F(ProgramTest, EndsWithAKilledCallerAndBeforeItsLocks) {
    const std::string lock = folder_.PathOf("lock");
    Background caller([&] {
        const int held = open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        return flock(held, LOCK_EX) == 0 && RunProgram(Shell(stayingGroup_)).exitStatus == 0;
    });
    const std::vector<pid_t> pids = AwaitPids();
    ASSERT_EQ(2U, pids.size());
    const auto begin = steady_clock::now();
    caller.Kill();
    const int own = open(lock.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(0, flock(own, LOCK_EX));
    for (const pid_t pid : pids) {
        EXPECT_TRUE(IsGone(pid));
    }
    EXPECT_LT(steady_clock::now() - begin, seconds(5));
    close(own);
}

TEST_F(ProgramTest, IsWaitedForWhateverTheCallerDoesWithSignals) {
    EXPECT_TRUE(SucceedsInChild([this] {
        (void)std::signal(SIGCHLD, SIG_IGN);
        struct sigaction interrupt {};
        interrupt.sa_handler = [](int) {};
        sigaction(SIGALRM, &interrupt, nullptr);
        const itimerval often{{0, 2000}, {0, 2000}};
        setitimer(ITIMER_REAL, &often, nullptr);
        return RunProgram(Shell("sleep 0.3; exit 5")).exitStatus == 5;
    }));
}

TEST_F(ProgramTest, IsMeasured) {
    const ProgramEnd end =
        RunProgram(Shell("sleep 0.2; head -c 60000000 /dev/zero | tail -c 60000000 | wc -c"));
    EXPECT_EQ("60000000\n", Output());
    EXPECT_GE(end.duration, milliseconds(200));
    EXPECT_GT(end.peakMemoryKiB, 58'000);
    EXPECT_LT(end.peakMemoryKiB, 1'000'000);
}

}  // namespace
