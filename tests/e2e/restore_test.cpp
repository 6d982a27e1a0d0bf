// A restore that is killed, or beside an update, leaves a whole add-on.
#include "e2e/restorekill.h"
#include "e2e/restores.h"

#include <gtest/gtest.h>

#include <fstream>

namespace e2e {
namespace {

namespace fs = std::filesystem;

class RestoreTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(); }

    static Listing Installed(const AddOn& addOn) { return ListingOf(PlaceOf(*appliance_, addOn)); }

    // Skips where that cannot be had.
    static void Sweep(Extent extent) {
        KillFigures figures;
        if (!SweepRestoreKills(*appliance_, extent, figures)) {
            GTEST_SKIP() << "restores cannot be followed here";
        }
        for (const std::string& fault : figures.faults) {
            ADD_FAILURE() << fault;
        }
        EXPECT_EQ(figures.trials, figures.old + figures.fresh);
        EXPECT_GT(figures.old, 0U);
        EXPECT_GT(figures.fresh, 0U);
    }
};

TEST_F(RestoreTest, PutsTheFactorysTreeInPlace) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        SCOPED_TRACE(addOn.name);
        const Listing factory = ListingOf(FactoryOf(*appliance_, addOn));
        ASSERT_NE(factory, Installed(addOn));
        for (int i = 0; i < 2; ++i) {  // what is restored can be restored again
            EXPECT_TRUE(Restore(*appliance_, addOn).Succeeded());
            EXPECT_EQ(factory, Installed(addOn));
            EXPECT_EQ(factory, ListingOf(FactoryOf(*appliance_, addOn)));
            std::ofstream(PlaceOf(*appliance_, addOn) / "conf", std::ios::app) << "# changed\n";
        }
    }
}

TEST_F(RestoreTest, BesideUpdatesLeavesAWholeAddOn) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        for (const std::string& fault : RestoreDuringUpdates(*appliance_, addOn, Seed(), 5)) {
            ADD_FAILURE() << addOn.name << " " << fault;
        }
    }
}

TEST_F(RestoreTest, LeavesAWholeAddOnWhenItIsKilled) {
    Sweep(Extent::kSample);
}

// Too long for each run; see CONTRIBUTING.md.
TEST_F(RestoreTest, DISABLED_LeavesAWholeAddOnWhenItIsKilledAtAnyCall) {
    Sweep(Extent::kAll);
}

}  // namespace
}  // namespace e2e
