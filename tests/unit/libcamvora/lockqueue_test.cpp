// The queue for a critical section: order of coming, limits, and what becomes of it when processes die.
#include "libcamvora/lockqueue.h"

#include "children.h"
#include "support/temporaryfolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
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
constexpr milliseconds kTolerance{500};

class LockQueue : public testing::Test {
protected:
    int Enter(milliseconds limit) const { return EnterLockQueue(guard_, Clock::now() + limit); }
    bool IsFree() const {
        const int fd = Enter(kShort);
        LeaveLockQueue(fd);
        return fd >= 0;
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

    int Remove() const { return RemoveUnlessQueued(guard_, order_, Clock::now()); }

    const TemporaryFolder folder_;
    const std::string guard_ = folder_.PathOf("guard");
    const std::string order_ = folder_.PathOf("order");
};

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
    const int fd = Enter(kLong);
    for (const milliseconds limit : {milliseconds(-1000), milliseconds(0), milliseconds(300)}) {
        const auto begin = Clock::now();
        EXPECT_EQ(-1, Enter(limit));
        EXPECT_GE(Clock::now() - begin, limit);
        EXPECT_LE(Clock::now() - begin, std::max(limit, milliseconds(0)) + kTolerance);
    }
    LeaveLockQueue(fd);
}

// As behind a process that is stopped while it draws its ticket.
TEST_F(LockQueue, DoesNotWaitForItsTicketForEver) {
    const int blocked = open(guard_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    struct flock all {};
    all.l_type = F_WRLCK;
    all.l_len = 2048;
    ASSERT_EQ(0, fcntl(blocked, F_OFD_SETLK, &all));
    const auto begin = Clock::now();
    EXPECT_EQ(-1, Enter(milliseconds(0)));
    EXPECT_EQ(-1, Remove());
    EXPECT_LE(Clock::now() - begin, 2 * kTolerance);
    close(blocked);
    EXPECT_TRUE(IsFree());
}

// Many times: the event of the close comes before the lock is freed.
TEST_F(LockQueue, PassesOverAHolderThatIsKilled) {
    for (int i = 0; i < 30; ++i) {
        Background holder([this] { return Enter(kLong) >= 0; });
        ASSERT_TRUE(holder.Worked());
        const auto waiter = Waiter('w');
        const auto begin = Clock::now();
        holder.Kill();
        EXPECT_TRUE(waiter->Worked());
        ASSERT_LE(Clock::now() - begin, kTolerance);
    }
}

TEST_F(LockQueue, PassesOverWaitersThatAreKilledOrWhoseTimeIsUp) {
    const int fd = Enter(kLong);
    const auto killed = Waiter('k');
    EXPECT_EQ(-1, Enter(kShort));
    const auto waiter = Waiter('w');
    killed->Kill();
    LeaveLockQueue(fd);
    EXPECT_TRUE(waiter->Worked());
    EXPECT_EQ("w", folder_.Read("order"));
    EXPECT_TRUE(IsFree());
}

// A child that goes on with the work when its parent is killed.
TEST_F(LockQueue, IsHeldByAChildThatInheritedIt) {
    const int fd = Enter(kLong);
    Background child([] { return true; });
    close(fd);  // what the kernel does for the killed parent
    EXPECT_FALSE(IsFree());
    child.Kill();
    EXPECT_TRUE(IsFree());
}

TEST_F(LockQueue, IsLeftForAllThatInheritedIt) {
    const int fd = Enter(kLong);
    Background child([] { return true; });
    LeaveLockQueue(fd);
    EXPECT_TRUE(IsFree());
}

TEST_F(LockQueue, FailsAtOnceWhereTheGuardDoesNotWork) {
    std::filesystem::create_symlink("elsewhere", folder_.PathOf("link"));
    for (const char* guard : {"missing_folder/guard", "", "link"}) {
        EXPECT_EQ(-1, EnterLockQueue(folder_.PathOf(guard), Clock::now() + kLong)) << guard;
        EXPECT_EQ(-1, RemoveUnlessQueued(folder_.PathOf(guard), order_, Clock::now())) << guard;
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
    folder_.Write("order", "");
    const int fd = Enter(kLong);
    EXPECT_EQ(0, Remove());
    EXPECT_TRUE(std::filesystem::exists(order_));
    LeaveLockQueue(fd);
    EXPECT_EQ(0, Remove());
    EXPECT_FALSE(std::filesystem::exists(order_));
    EXPECT_EQ(0, Remove());
    EXPECT_EQ(-1, RemoveUnlessQueued(guard_, folder_.PathOf("."), Clock::now()));
}

}  // namespace
