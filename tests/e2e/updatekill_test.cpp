// An update that is killed leaves a whole add-on.
#include "e2e/updatekill.h"

#include <gtest/gtest.h>

namespace e2e {
namespace {

class KilledUpdate : public testing::TestWithParam<Extent> {
protected:
    // Skips where that cannot be had.
    void Sweep() {
        KillFigures figures;
        if (!SweepKills(appliance_, GetParam(), figures)) {
            GTEST_SKIP() << "updates cannot be followed here";
        }
        for (const std::string& fault : figures.faults) {
            ADD_FAILURE() << fault;
        }
        std::cout << figures.trials << " trials: " << figures.old << " old, " << figures.fresh << " new\n";
        EXPECT_EQ(figures.trials, figures.old + figures.fresh);
        EXPECT_GT(figures.old, 0U);
        EXPECT_GT(figures.fresh, 0U);
    }

    Appliance appliance_;
};

TEST_P(KilledUpdate, LeavesAWholeAddOn) {
    Sweep();
}

TEST_P(KilledUpdate, LeavesAWholeAddOnWhereItIsCopiedFromAnotherDisk) {
    appliance_.Stop();
    const bool isMounted = MountWorkDirectories(appliance_);
    appliance_.Launch();
    if (!isMounted) {
        GTEST_SKIP() << "no other disk can be had here";
    }
    Sweep();
}

INSTANTIATE_TEST_SUITE_P(Sample, KilledUpdate, testing::Values(Extent::kSample));

// Too long for each run; see CONTRIBUTING.md.
INSTANTIATE_TEST_SUITE_P(DISABLED_All, KilledUpdate, testing::Values(Extent::kAll));

}  // namespace
}  // namespace e2e
