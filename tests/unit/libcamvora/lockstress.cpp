#include "lockstress.h"

#include "libcamvora/lockguards.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
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
    std::atomic<int> cyclesLeft{0};
    std::atomic<pid_t> inside{0};
    std::atomic<int> entered{0};
    std::atomic<int> timedOut{0};
    std::atomic<int> overlaps{0};
    std::atomic<int> signsMissing{0};
    std::atomic<int> late{0};
    std::atomic<long> longestExcessMs{0};
};

class SharedBoard {
public:
    explicit SharedBoard(int cycles)
        : board_(new (mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
                     Board) {
        board_->cyclesLeft = cycles;
    }
    ~SharedBoard() { munmap(board_, sizeof(Board)); }
    SharedBoard(const SharedBoard&) = delete;
    SharedBoard& operator=(const SharedBoard&) = delete;

    Board& Get() const { return *board_; }

private:
    Board* const board_;
};

// A record lock on a file of its own: the kernel frees it at the very beginning of a process's end.
class Witness {
public:
    explicit Witness(const std::string& folder)
        : file_(open((folder + "/witness").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {}

    // False when another process is inside.
    bool Come() const { return Set(F_WRLCK); }
    void Go() const { (void)Set(F_UNLCK); }

private:
    bool Set(short type) const {
        struct flock all {};
        all.l_type = type;
        return fcntl(file_, F_SETLK, &all) == 0;
    }

    const int file_;
};

class Worker {
public:
    Worker(const std::string& folder, const Locking& locking, Board& board)
        : folder_(folder),
          locking_(locking),
          board_(board),
          witness_(folder),
          random_(static_cast<unsigned>(getpid())) {}

    void Work() {
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
        board_.overlaps += witness_.Come() ? 0 : 1;
        board_.inside = getpid();
        std::this_thread::sleep_for(microseconds(Pick(0, 1500)));
        board_.signsMissing += access(LockFile(folder_).c_str(), F_OK) == 0 ? 0 : 1;
        witness_.Go();
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
    const Witness witness_;
    std::minstd_rand random_;
};

class Crew {
public:
    Crew(const std::string& folder, const Locking& locking, const Plan& plan)
        : folder_(folder), locking_(locking), shared_(plan.cycles) {
        for (int i = 0; i < plan.processes; ++i) {
            pids_.push_back(StartWorker());
        }
    }

    // Now one who is inside, now anyone; each is replaced.
    void KillSomeUntilDone() {
        std::minstd_rand random;
        for (int round = 0; shared_.Get().cyclesLeft > 0; ++round) {
            std::this_thread::sleep_for(milliseconds(random() % 20));
            const pid_t inside = shared_.Get().inside;
            const pid_t wanted = round % 2 == 0 ? inside : pids_[random() % pids_.size()];
            const auto victim = std::find(pids_.begin(), pids_.end(), wanted);
            if (victim != pids_.end()) {
                kill(*victim, SIGKILL);
                waitpid(*victim, nullptr, 0);
                ++killed_;
                *victim = StartWorker();
            }
        }
    }

    Figures WaitForAll() {
        for (const pid_t pid : pids_) {
            waitpid(pid, nullptr, 0);
        }
        const Board& board = shared_.Get();
        return {board.entered, board.timedOut,       killed_, board.overlaps, board.signsMissing,
                board.late,    board.longestExcessMs};
    }

private:
    pid_t StartWorker() {
        const pid_t pid = fork();
        if (pid == 0) {
            Worker(folder_, locking_, shared_.Get()).Work();
            _exit(0);
        }
        return pid;
    }

    const std::string& folder_;
    const Locking& locking_;
    const SharedBoard shared_;
    std::vector<pid_t> pids_;
    int killed_ = 0;
};

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
    Crew crew(folder, locking, plan);
    if (plan.kill) {
        crew.KillSomeUntilDone();
    }
    return crew.WaitForAll();
}

}  // namespace stress
