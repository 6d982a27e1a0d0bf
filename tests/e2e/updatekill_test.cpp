// An update that is killed leaves a whole add-on: a sample of what long_updates tries.
#include "e2e/updatekill.h"

#include <gtest/gtest.h>

namespace e2e {
namespace {

class KilledUpdate : public testing::Test {
protected:
    // Skips where that cannot be had.
    void SweepSample() {
        KillFigures figures;
        if (!SweepKills(appliance_, Extent::kSample, figures)) {
            GTEST_SKIP() << "updates cannot be followed here";
        }
        for (const std::string& fault : figures.faults) {
            ADD_FAILURE() << fault;
        }
        std::cout << figures.all.trials << " trials: " << figures.all.old << " old, " << figures.all.fresh
                  << " new\n";
        EXPECT_EQ(figures.all.trials, figures.all.old + figures.all.fresh);
        EXPECT_GT(figures.all.old, 0U);
        EXPECT_GT(figures.all.fresh, 0U);
    }

    Appliance appliance_;
};

TEST_F(KilledUpdate, LeavesAWholeAddOn) {
    SweepSample();
}

TEST_F(KilledUpdate, LeavesAWholeAddOnWhereItIsCopiedFromAnotherDisk) {
    appliance_.Stop();
    const bool isMounted = MountWorkDirectories(appliance_);
    appliance_.Launch();
    if (!isMounted) {
        GTEST_SKIP() << "no other disk can be had here";
    }
    SweepSample();
}

}  // namespace
}  // namespace e2e
