// The critical section under stress, as long as a unit test may take. tests/long has the long form.
#include "lockstress.h"

#include "libcamvora/lockguards.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

class LockStress : public testing::TestWithParam<bool> {};

TEST_P(LockStress, LetsNoTwoInAndLeavesNothing) {
    const bool kill = GetParam();
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.PathOf("locks"));
    const std::string locks = folder.PathOf("locks");
    const stress::Figures figures = stress::Run(locks, stress::kGuarded, {32, 600, kill});
    EXPECT_GT(figures.entered, 300);
    EXPECT_EQ(0, figures.overlaps);
    EXPECT_EQ(0, figures.signsMissing);
    EXPECT_EQ(0, figures.late) << figures.longestExcessMs << " ms beyond the limit";
    if (kill) {
        EXPECT_GT(figures.killed, 5);
        camvora::SweepLockFiles(locks);  // the dead leave their file to the next one or to this
    }
    EXPECT_FALSE(std::filesystem::exists(stress::LockFile(locks)));
}

INSTANTIATE_TEST_SUITE_P(, LockStress, testing::Bool(),
                         [](const auto& row) { return row.param ? "with_kills" : "without_kills"; });

}  // namespace
