#include "client/watchdog.h"

#include <gtest/gtest.h>

#include <atomic>

namespace client {
namespace {

constexpr std::chrono::milliseconds kLimit{1000};
constexpr std::chrono::milliseconds kStep{100};

TEST(WatchdogTest, ExpiresALimitAfterTheLastRestart) {
    std::atomic<int> calls{0};
    Watchdog watchdog(kLimit, [&calls] { ++calls; });
    for (std::chrono::milliseconds passed{0}; passed < 3 * kLimit / 2; passed += kStep) {
        std::this_thread::sleep_for(kStep);
        watchdog.Restart();
    }
    EXPECT_EQ(0, calls);
    while (calls < 2) {  // again and again, whoever restarts it then
        std::this_thread::sleep_for(kStep);
        if (watchdog.HasExpired()) {
            watchdog.Restart();
        }
    }
    EXPECT_TRUE(watchdog.HasExpired());
}

}  // namespace
}  // namespace client
