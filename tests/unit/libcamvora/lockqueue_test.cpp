// The queue for a critical section: exclusion, order of coming, and what becomes of it when processes die.
#include "libcamvora/lockqueue.h"

#include "children.h"
#include "support/temporaryfolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using camvora::EnterLockQueue;
using camvora::LeaveLockQueue;
using camvora::RemoveUnlessQueued;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kShort{50};
constexpr milliseconds kLong{10'000};
constexpr milliseconds kTolerance{200};

class LockQueue : public testing::Test {
protected:
    int Enter(milliseconds limit) const { return EnterLockQueue(guard_, Clock::now() + limit); }
    bool IsFree() const {
        const int fd = Enter(kShort);
        if (fd >= 0) {
            LeaveLockQueue(fd);
        }
        return fd >= 0;
    }

    std::unique_ptr<Background> Holder() const {
        auto holder = std::make_unique<Background>([this] { return Enter(kLong) >= 0; });
        EXPECT_TRUE(holder->Worked());
        return holder;
    }

    // A process that has its ticket, and adds `mark` to the file "order" once it is inside, then leaves.
    std::unique_ptr<Background> Waiter(char mark) const {
        const std::int64_t before = TicketsDrawn();
        auto waiter = std::make_unique<Background>([this, mark] {
            const int fd = Enter(kLong);
            const int order = open(order_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
            const bool written = fd >= 0 && write(order, &mark, 1) == 1;
            LeaveLockQueue(fd);
            return written;
        });
        while (TicketsDrawn() == before) {
            std::this_thread::sleep_for(milliseconds(1));
        }
        return waiter;
    }

    std::int64_t TicketsDrawn() const {
        const std::string content = folder_.Read("guard");
        std::int64_t last = 0;
        std::memcpy(&last, content.data(), std::min(content.size(), sizeof(last)));
        return last;
    }

    // What a process does that is stopped while it draws its ticket.
    int BlockTickets() const {
        const int fd = open(guard_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        struct flock all {};
        all.l_type = F_WRLCK;
        all.l_len = 2048;
        EXPECT_EQ(0, fcntl(fd, F_OFD_SETLK, &all));
        return fd;
    }

    const TemporaryFolder folder_;
    const std::string guard_ = folder_.PathOf("guard");
    const std::string order_ = folder_.PathOf("order");
};

TEST_F(LockQueue, LetsOneInAtATime) {
    auto holder = Holder();
    EXPECT_FALSE(IsFree());
    holder->Kill();
    EXPECT_TRUE(IsFree());
    EXPECT_TRUE(IsFree());
}

TEST_F(LockQueue, ServesInTheOrderOfComing) {
    const int fd = Enter(kLong);
    std::vector<std::unique_ptr<Background>> waiters;
    for (const char mark : {'a', 'b', 'c', 'd', 'e'}) {
        waiters.push_back(Waiter(mark));
    }
    LeaveLockQueue(fd);
    for (const auto& waiter : waiters) {
        EXPECT_TRUE(waiter->Worked());
    }
    EXPECT_EQ("abcde", folder_.Read("order"));
}

TEST_F(LockQueue, KeepsTheLimit) {
    const auto holder = Holder();
    for (const int limitMs : {-1000, 0, 1, 100, 300}) {
        const milliseconds limit(limitMs);
        const auto begin = Clock::now();
        EXPECT_EQ(-1, Enter(limit));
        EXPECT_GE(Clock::now() - begin, limit);
        EXPECT_LE(Clock::now() - begin, std::max(limit, milliseconds(0)) + kTolerance);
    }
}

TEST_F(LockQueue, DoesNotWaitForItsTicketForEver) {
    const int blocked = BlockTickets();
    const auto begin = Clock::now();
    EXPECT_EQ(-1, Enter(milliseconds(0)));
    EXPECT_EQ(-1, RemoveUnlessQueued(guard_, order_, Clock::now()));
    EXPECT_LE(Clock::now() - begin, 2 * kTolerance);
    close(blocked);
    EXPECT_TRUE(IsFree());
}

// Many times: the event of the close comes before the lock is freed.
TEST_F(LockQueue, PassesOverAHolderThatIsKilled) {
    for (int i = 0; i < 30; ++i) {
        auto holder = Holder();
        const auto waiter = Waiter('w');
        const auto begin = Clock::now();
        holder->Kill();
        EXPECT_TRUE(waiter->Worked());
        ASSERT_LE(Clock::now() - begin, kTolerance);
    }
}

TEST_F(LockQueue, PassesOverAWaiterThatIsKilled) {
    const int fd = Enter(kLong);
    const auto killed = Waiter('k');
    const auto waiter = Waiter('w');
    killed->Kill();
    LeaveLockQueue(fd);
    EXPECT_TRUE(waiter->Worked());
    EXPECT_EQ("w", folder_.Read("order"));
}

TEST_F(LockQueue, PassesOverAWaiterWhoseTimeIsUp) {
    const auto holder = Holder();
    const auto waiter = Waiter('w');
    EXPECT_EQ(-1, Enter(kShort));
    holder->Kill();
    EXPECT_TRUE(waiter->Worked());
    EXPECT_TRUE(IsFree());
}

// The holder's child goes on with the work when the holder is killed.
TEST_F(LockQueue, IsHeldByAChildThatInheritedIt) {
    std::array<int, 2> channel{};
    ASSERT_EQ(0, pipe(channel.data()));
    Background holder([this, &channel] {
        const bool entered = Enter(kLong) >= 0;
        const pid_t child = fork();
        if (child == 0) {
            char end = 0;
            close(channel[1]);
            (void)!read(channel[0], &end, 1);
            _exit(0);
        }
        return entered && child > 0;
    });
    ASSERT_TRUE(holder.Worked());
    holder.Kill();
    EXPECT_FALSE(IsFree());
    close(channel[1]);  // ends the child
    const int fd = Enter(kLong);
    EXPECT_GE(fd, 0);
    LeaveLockQueue(fd);
}

TEST_F(LockQueue, IsLeftForAllThatInheritedIt) {
    const int fd = Enter(kLong);
    Background child([] { return true; });
    ASSERT_TRUE(child.Worked());
    LeaveLockQueue(fd);
    EXPECT_TRUE(IsFree());
}

struct UnusableCase {
    const char* name;
    void (*make)(const TemporaryFolder& folder);
};

const UnusableCase kUnusableCases[] = {
    {"missing_folder/guard", [](const TemporaryFolder&) {}},
    {"guard_is_a_folder",
     [](const TemporaryFolder& folder) {
         std::filesystem::create_directory(folder.PathOf("guard_is_a_folder"));
     }},
    {"guard_is_a_link",
     [](const TemporaryFolder& folder) {
         std::filesystem::create_symlink("elsewhere", folder.PathOf("guard_is_a_link"));
     }},
};

TEST_F(LockQueue, FailsAtOnceWhereTheGuardDoesNotWork) {
    for (const UnusableCase& row : kUnusableCases) {
        row.make(folder_);
        EXPECT_EQ(-1, EnterLockQueue(folder_.PathOf(row.name), Clock::now() + kLong)) << row.name;
        EXPECT_EQ(-1, RemoveUnlessQueued(folder_.PathOf(row.name), order_, Clock::now())) << row.name;
    }
}

TEST_F(LockQueue, FailsWhereTheDiskIsFull) {
    const struct rlimit none = {0, 0};
    EXPECT_TRUE(SucceedsInChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &none) == 0 && Enter(kLong) == -1;
    }));
    EXPECT_TRUE(IsFree());
}

TEST_F(LockQueue, RemovesAFileUnlessSomebodyIsThere) {
    folder_.Write("lock", "");
    auto holder = Holder();
    EXPECT_EQ(0, RemoveUnlessQueued(guard_, folder_.PathOf("lock"), Clock::now()));
    EXPECT_TRUE(std::filesystem::exists(folder_.PathOf("lock")));
    holder->Kill();
    EXPECT_EQ(0, RemoveUnlessQueued(guard_, folder_.PathOf("lock"), Clock::now()));
    EXPECT_FALSE(std::filesystem::exists(folder_.PathOf("lock")));
    EXPECT_EQ(0, RemoveUnlessQueued(guard_, folder_.PathOf("lock"), Clock::now()));
    EXPECT_EQ(-1, RemoveUnlessQueued(guard_, folder_.PathOf("."), Clock::now()));
}

}  // namespace
