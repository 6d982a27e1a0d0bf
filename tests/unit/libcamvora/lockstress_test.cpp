// Many processes at one critical section, some of them killed at random moments, with a witness of its own
// that tells whether two were ever inside at once.
#include "libcamvora/lockguards.h"
#include "support/temporaryfolder.h"

#include "children.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kWorkers = 32;
constexpr int kCycles = 600;
constexpr milliseconds kGrace{200};

// What the processes share.
struct Board {
    std::atomic<bool> isOpen{false};  // once all have been started
    std::atomic<int> cyclesLeft{kCycles};
    std::atomic<pid_t> inside{0};
    std::atomic<int> entered{0};
    std::atomic<int> overlaps{0};
    std::atomic<int> signsMissing{0};  // no lock file to be seen while somebody was inside
    std::atomic<int> late{0};          // waits longer than their limit and 200 ms
};

// Never unmapped: there is one for each run.
Board& NewBoard() {
    return *new (mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
        Board;
}

class Worker {
public:
    Worker(const std::string& folder, Board& board) : folder_(folder), board_(board) {}

    void Work() {
        while (!board_.isOpen) {
            std::this_thread::sleep_for(milliseconds(1));
        }
        while (board_.cyclesLeft.fetch_sub(1) > 0) {
            Cycle();
        }
    }

private:
    void Cycle() {
        const auto deadline = Clock::now() + milliseconds(Pick(20, 3000));
        const int handle = camvora::EnterGuarded(folder_, lockFile_, deadline);
        board_.late += Clock::now() > deadline + kGrace ? 1 : 0;
        if (handle < 0) {
            return;
        }
        BeInside();
        camvora::LeaveLockQueue(handle);
        (void)camvora::RemoveGuarded(folder_, lockFile_);
    }

    void BeInside() {
        ++board_.entered;
        board_.overlaps += SetWitness(F_WRLCK) ? 0 : 1;
        board_.inside = getpid();
        std::this_thread::sleep_for(std::chrono::microseconds(Pick(0, 1500)));
        board_.signsMissing += access(lockFile_.c_str(), F_OK) == 0 ? 0 : 1;
        (void)SetWitness(F_UNLCK);
    }

    // A record lock on a file of its own: the kernel frees it at the very beginning of a process's end. False
    // when another process is inside.
    bool SetWitness(short type) const {
        struct flock all {};
        all.l_type = type;
        return fcntl(witness_, F_SETLK, &all) == 0;
    }

    int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

    const std::string folder_;
    Board& board_;
    const std::string lockFile_ = folder_ + "/cv_x.lock";
    const int witness_ = open((folder_ + "/witness").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    std::minstd_rand random_{static_cast<unsigned>(getpid())};
};

class LockStress : public testing::TestWithParam<bool> {
protected:
    LockStress() { std::filesystem::create_directory(locks_); }

    std::unique_ptr<Background> StartWorker() {
        return std::make_unique<Background>([this] {
            Worker(locks_, board_).Work();
            return true;
        });
    }

    // Now one who is inside, now anyone; each is replaced. Returns how many.
    int KillSomeUntilDone() {
        std::minstd_rand random;
        int killed = 0;
        for (int round = 0; board_.cyclesLeft > 0; ++round) {
            std::this_thread::sleep_for(milliseconds(random() % 20));
            const pid_t wanted =
                round % 2 == 0 ? board_.inside.load() : workers_[random() % workers_.size()]->Pid();
            const auto victim = std::find_if(workers_.begin(), workers_.end(), [wanted](const auto& worker) {
                return worker->Pid() == wanted;
            });
            if (victim != workers_.end()) {
                (*victim)->Kill();
                *victim = StartWorker();
                ++killed;
            }
        }
        return killed;
    }

    const TemporaryFolder folder_;
    const std::string locks_ = folder_.PathOf("locks");
    Board& board_ = NewBoard();
    std::vector<std::unique_ptr<Background>> workers_{kWorkers};
};

TEST_P(LockStress, LetsNoTwoInAndLeavesNothing) {
    const bool areKilled = GetParam();
    std::generate(workers_.begin(), workers_.end(), [this] { return StartWorker(); });
    board_.isOpen = true;
    const int killed = areKilled ? KillSomeUntilDone() : 0;
    for (const auto& worker : workers_) {
        EXPECT_TRUE(worker->Worked());
    }
    EXPECT_GT(board_.entered, kCycles / 2);
    EXPECT_EQ(0, board_.overlaps);
    EXPECT_EQ(0, board_.signsMissing);
    EXPECT_EQ(0, board_.late);
    if (areKilled) {
        EXPECT_GT(killed, 5);
        camvora::SweepLockFiles(locks_);  // the dead leave their file to the next one or to this
    }
    EXPECT_FALSE(std::filesystem::exists(locks_ + "/cv_x.lock"));
}

INSTANTIATE_TEST_SUITE_P(, LockStress, testing::Bool(),
                         [](const auto& row) { return row.param ? "with_kills" : "without_kills"; });

}  // namespace
