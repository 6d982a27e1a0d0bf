// A restore that is killed, or beside an update, leaves a whole add-on.
#include "e2e/processes.h"
#include "e2e/restorekill.h"
#include "e2e/restores.h"
#include "support/smalldisk.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <future>

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

TEST_F(RestoreTest, LeavesAnUpdateThatIsUnderWayAlone) {
    AddOnTree old(kDevicePack, "1.0.0-0001");
    AddOnTree fresh(kDevicePack, "2.0.0-0002");
    AddRestoreScript(kDevicePack, old);
    old.SetScript("preinst", "until [ -e /tmp/go_on ]; do sleep 0.1; done");
    Arrange(*appliance_, kDevicePack, old, fresh);
    auto update = std::async(std::launch::async, [] {
        return Update(*appliance_, kDevicePack, FilePath(kDevicePack)).Succeeded();
    });
    ASSERT_TRUE(WaitUntil([] {
        return !Descendants(appliance_->Supervisor(), [](pid_t pid) {
                    return NameOf(pid) == "preinst";
                }).empty();
    }));
    EXPECT_TRUE(Restore(*appliance_, kDevicePack).Succeeded());
    EXPECT_EQ(old.Content(), Installed(kDevicePack));
    const std::ofstream goOn(appliance_->TemporaryPath() / "go_on");
    EXPECT_TRUE(update.get());
    EXPECT_EQ(fresh.Content(), Installed(kDevicePack));
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

TEST(RestoreOnAFullDisk, LeavesWhatIsInstalled) {
    constexpr std::size_t kDiskBytes = 128U << 20U;
    const TemporaryFolder disk;
    if (!MountSmallDisk(disk.Path(), kDiskBytes)) {
        GTEST_SKIP() << "no small disk can be had here";
    }
    setenv("TMPDIR", disk.Path().c_str(), 1);
    const Appliance appliance;
    unsetenv("TMPDIR");
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        SCOPED_TRACE(addOn.name);
        const fs::path place = PlaceOf(appliance, addOn);
        AddOnTree(addOn, "0.9.0-0009").CopyTo(FactoryOf(appliance, addOn));
        const Listing before = ListingOf(place);
        ASSERT_TRUE(ResizeSmallDisk(
            disk.Path(), fs::space(disk.Path()).capacity - fs::space(disk.Path()).free + (300U << 10U)));
        EXPECT_TRUE(Restore(appliance, addOn).Succeeded());
        EXPECT_EQ(before, ListingOf(place));
        EXPECT_FALSE(fs::exists(place.string() + ".fresh"));
        ASSERT_TRUE(ResizeSmallDisk(disk.Path(), kDiskBytes));
        EXPECT_TRUE(Restore(appliance, addOn).Succeeded());
        EXPECT_EQ(ListingOf(FactoryOf(appliance, addOn)), ListingOf(place));
    }
}

}  // namespace
}  // namespace e2e
