#include "lockstress.h"

#include "libcamvora/lockguards.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <functional>
#include <new>
#include <random>
#include <thread>
#include <vector>

namespace stress {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kTolerance{200};

// What the processes share.
struct Board {
    std::atomic<bool> isOpen{false};  // once all have been started
    std::atomic<int> cyclesLeft{0};
    std::atomic<pid_t> inside{0};
    std::atomic<int> entered{0};
    std::atomic<int> timedOut{0};
    std::atomic<int> overlaps{0};
    std::atomic<int> signsMissing{0};
    std::atomic<int> late{0};
    std::atomic<long> longestExcessMs{0};
};

// Never unmapped: there is one for each run.
Board& NewBoard() {
    return *new (mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
        Board;
}

class Worker {
public:
    Worker(const std::string& folder, const Locking& locking, Board& board)
        : folder_(folder), locking_(locking), board_(board) {}

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
        const milliseconds limit(Pick(20, 3000));
        const auto begin = Clock::now();
        const int handle = locking_.enter(folder_, limit);
        NoteWait(std::chrono::duration_cast<milliseconds>(Clock::now() - begin - limit));
        if (handle < 0) {
            ++board_.timedOut;
            return;
        }
        BeInside();
        locking_.leave(handle);
        locking_.remove(folder_);
    }

    void BeInside() {
        ++board_.entered;
        board_.overlaps += SetWitness(F_WRLCK) ? 0 : 1;
        board_.inside = getpid();
        std::this_thread::sleep_for(microseconds(Pick(0, 1500)));
        board_.signsMissing += access(LockFile(folder_).c_str(), F_OK) == 0 ? 0 : 1;
        (void)SetWitness(F_UNLCK);
    }

    // A record lock on a file of its own: the kernel frees it at the very beginning of a process's end. False
    // when another process is inside.
    bool SetWitness(short type) const {
        struct flock all {};
        all.l_type = type;
        return fcntl(witness_, F_SETLK, &all) == 0;
    }

    void NoteWait(milliseconds excess) {
        board_.late += excess > kTolerance ? 1 : 0;
        long longest = board_.longestExcessMs;
        while (excess.count() > longest &&
               !board_.longestExcessMs.compare_exchange_weak(longest, excess.count())) {
        }
    }

    int Pick(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

    const std::string& folder_;
    const Locking& locking_;
    Board& board_;
    const int witness_ = open((folder_ + "/witness").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    std::minstd_rand random_{static_cast<unsigned>(getpid())};
};

pid_t StartWorker(const std::string& folder, const Locking& locking, Board& board) {
    const pid_t pid = fork();
    if (pid == 0) {
        Worker(folder, locking, board).Work();
        _exit(0);
    }
    return pid;
}

// Now one who is inside, now anyone; each is replaced. Returns how many.
int KillSomeUntilDone(std::vector<pid_t>& pids, const Board& board, const std::function<pid_t()>& replace) {
    std::minstd_rand random;
    int killed = 0;
    for (int round = 0; board.cyclesLeft > 0; ++round) {
        std::this_thread::sleep_for(milliseconds(random() % 20));
        const pid_t inside = board.inside;
        const pid_t wanted = round % 2 == 0 ? inside : pids[random() % pids.size()];
        const auto victim = std::find(pids.begin(), pids.end(), wanted);
        if (victim != pids.end()) {
            kill(*victim, SIGKILL);
            waitpid(*victim, nullptr, 0);
            ++killed;
            *victim = replace();
        }
    }
    return killed;
}

}  // namespace

std::string LockFile(const std::string& folder) {
    return folder + "/cv_x.lock";
}

const Locking kGuarded = {
    [](const std::string& folder, milliseconds limit) {
        return camvora::EnterGuarded(folder, LockFile(folder), Clock::now() + limit);
    },
    camvora::LeaveLockQueue,
    [](const std::string& folder) { (void)camvora::RemoveGuarded(folder, LockFile(folder)); },
};

Figures Run(const std::string& folder, const Locking& locking, const Plan& plan) {
    Board& board = NewBoard();
    board.cyclesLeft = plan.cycles;
    const auto start = [&] { return StartWorker(folder, locking, board); };
    std::vector<pid_t> pids(static_cast<std::size_t>(plan.processes));
    std::generate(pids.begin(), pids.end(), start);
    board.isOpen = true;
    const int killed = plan.kill ? KillSomeUntilDone(pids, board, start) : 0;
    for (const pid_t pid : pids) {
        waitpid(pid, nullptr, 0);
    }
    return {board.entered, board.timedOut,       killed, board.overlaps, board.signsMissing,
            board.late,    board.longestExcessMs};
}

}  // namespace stress
