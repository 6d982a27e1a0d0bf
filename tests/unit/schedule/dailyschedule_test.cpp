#include "schedule/dailyschedule.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace schedule {
namespace {

constexpr std::time_t kHour = 3600;
constexpr std::time_t kDay = 24 * kHour;
constexpr std::time_t kMonday = 1'772'409'600;  // 2026-03-02T00:00:00Z

class DailyScheduleTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }

    static Rule At(int hour, const std::string& name) { return {name, {30, hour, {name}}}; }

    // The names of the rules that are followed then.
    std::string Follow(std::time_t now) {
        std::string followed;
        while (const auto line = schedule_.TakeNext(rules_, now)) {
            followed += line->command.front();
        }
        return followed;
    }

    // What a new start would know.
    void Restart() { schedule_ = DailySchedule(schedule_.Times()); }

    std::vector<Rule> rules_ = {At(3, "a"), At(4, "b")};
    DailySchedule schedule_{{}};
};

TEST_F(DailyScheduleTest, FollowsEachLineOnceADay) {
    EXPECT_EQ("", Follow(kMonday + 12 * kHour));  // both are new
    for (int day = 1; day < 4; ++day) {
        const std::time_t midnight = kMonday + day * kDay;
        EXPECT_EQ("", Follow(midnight + 3 * kHour + 1799));
        EXPECT_EQ("a", Follow(midnight + 3 * kHour + 1800));
        Restart();
        EXPECT_EQ("", Follow(midnight + 4 * kHour + 1799));
        EXPECT_EQ("b", Follow(midnight + 5 * kHour));
        EXPECT_EQ("", Follow(midnight + 23 * kHour));
    }
}

TEST_F(DailyScheduleTest, MakesUpOnceForWhatWasMissed) {
    (void)Follow(kMonday + 12 * kHour);
    Restart();
    EXPECT_EQ("ab", Follow(kMonday + 5 * kDay + 12 * kHour));
    EXPECT_EQ("", Follow(kMonday + 5 * kDay + 13 * kHour));
    rules_ = {At(3, "a"), At(5, "c")};  // "c" is new, "b" is forgotten
    EXPECT_EQ("", Follow(kMonday + 5 * kDay + 14 * kHour));
    rules_ = {At(3, "a"), At(4, "b")};
    EXPECT_EQ("a", Follow(kMonday + 7 * kDay + 4 * kHour));
}

TEST_F(DailyScheduleTest, DoesNothingTwiceWhenTheClockGoesBack) {
    (void)Follow(kMonday);
    EXPECT_EQ("ab", Follow(kMonday + 12 * kHour));
    EXPECT_EQ("", Follow(kMonday + 2 * kHour));
    EXPECT_EQ("", Follow(kMonday + 4 * kHour));
    EXPECT_EQ("", Follow(kMonday + 13 * kHour));
    EXPECT_EQ("ab", Follow(kMonday + kDay + 12 * kHour));
}

// As with an empty battery, until the time is known again.
TEST_F(DailyScheduleTest, GoesByAClockThatIsFarBehind) {
    (void)Follow(kMonday);
    EXPECT_EQ("ab", Follow(kMonday + 12 * kHour));
    Restart();
    EXPECT_EQ("", Follow(10 * kHour));
    EXPECT_EQ("ab", Follow(kDay + 10 * kHour));
    EXPECT_EQ("", Follow(kMonday + 13 * kHour));
    EXPECT_EQ("ab", Follow(kMonday + kDay + 13 * kHour));
}

}  // namespace
}  // namespace schedule
