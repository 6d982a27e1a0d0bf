// "Update" on a real appliance: what runs at the same time, and what a start finds.
#include "e2e/processes.h"
#include "e2e/restores.h"

#include <chrono>
#include <fstream>
#include <future>

namespace e2e {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kFailed = 400;

class UpdateTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(); }

    static Listing Installed(const AddOn& addOn) { return ListingOf(PlaceOf(*appliance_, addOn)); }
};

TEST_F(UpdateTest, KeepsASecondOneAndARestoreOutAndNoOtherAddOn) {
    AddOnTree old(kDevicePack, "1.0.0-0001");
    AddRestoreScript(kDevicePack, old);
    old.SetScript("preinst", "until [ -e /tmp/go_on ]; do sleep 0.1; done");
    const AddOnTree fresh(kDevicePack, "2.0.0-0002");
    Arrange(*appliance_, kDevicePack, old, fresh);
    const AddOnTree display(kLocalDisplay, "2.0.0-0002");
    Arrange(*appliance_, kLocalDisplay, AddOnTree(kLocalDisplay, "1.0.0-0001"), display);
    auto first = std::async(std::launch::async, [] {
        return Update(*appliance_, kDevicePack, FilePath(kDevicePack)).Succeeded();
    });
    ASSERT_TRUE(WaitUntil([] {
        return !Descendants(appliance_->Supervisor(), [](pid_t pid) {
                    return NameOf(pid) == "preinst";
                }).empty();
    }));

    auto begin = Clock::now();
    EXPECT_TRUE(Update(*appliance_, kLocalDisplay, FilePath(kLocalDisplay)).Succeeded());
    EXPECT_LT(Clock::now() - begin, 2500ms);
    EXPECT_EQ(display.Content(), Installed(kLocalDisplay));

    begin = Clock::now();
    EXPECT_EQ(kFailed, Update(*appliance_, kDevicePack, FilePath(kDevicePack)).Code());
    EXPECT_GE(Clock::now() - begin, 3000ms);
    EXPECT_LT(Clock::now() - begin, 4500ms);
    EXPECT_TRUE(Restore(*appliance_, kDevicePack).Succeeded());
    EXPECT_EQ(old.Content(), Installed(kDevicePack));

    const std::ofstream goOn(appliance_->TemporaryPath() / "go_on");
    EXPECT_TRUE(first.get());
    EXPECT_EQ(fresh.Content(), Installed(kDevicePack));
}

// A power cut may have thinned it.
TEST_F(UpdateTest, TakesNothingThatWasUnpackedBeforeTheLastStart) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        const AddOnTree old(addOn, "1.0.0-0001");
        Arrange(*appliance_, addOn, old, AddOnTree(addOn, "2.0.0-0002"));
        appliance_->Stop();
        appliance_->Launch();
        EXPECT_EQ(kFailed, Update(*appliance_, addOn, FilePath(addOn)).Code());
        EXPECT_EQ(old.Content(), Installed(addOn));
    }
}

// A copy that was cut is in the way of none.
TEST_F(UpdateTest, PutsTheFactorysTreeIntoAnEmptyPlaceAtTheStart) {
    appliance_->Stop();
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        const std::string place = PlaceOf(*appliance_, addOn);
        fs::remove_all(place);
        fs::create_directory(place + ".fresh");
        std::ofstream(place + ".fresh/part") << "x";
    }
    appliance_->Launch();
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        const std::string place = PlaceOf(*appliance_, addOn);
        EXPECT_EQ(ListingOf(place + ".default"), Installed(addOn));
        EXPECT_FALSE(Installed(addOn).empty());
        EXPECT_FALSE(fs::exists(place + ".fresh"));
    }
}

TEST_F(UpdateTest, InstallsAWholePackageWhateverIsInspectedMeanwhile) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        for (const std::string& fault : InspectDuringUpdates(*appliance_, addOn, Seed(), 25)) {
            ADD_FAILURE() << addOn.name << " " << fault;
        }
    }
}

}  // namespace
}  // namespace e2e
