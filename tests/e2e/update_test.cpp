// "Update" on a real appliance: what runs at the same time, and what a start finds.
#include "e2e/processes.h"
#include "e2e/updates.h"

#include <chrono>
#include <fstream>
#include <future>

namespace e2e {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kFailed = 400;

struct Trees {
    explicit Trees(const AddOn& whose) : addOn(whose), old(whose, "1.0.0-0001"), fresh(whose, "2.0.0-0002") {}

    void ArrangeIn(const Appliance& appliance) const { Arrange(appliance, addOn, old, fresh); }

    const AddOn addOn;
    AddOnTree old;
    AddOnTree fresh;
};

class UpdateTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(); }

    static Listing Installed(const AddOn& addOn) { return ListingOf(PlaceOf(*appliance_, addOn)); }

    Trees devicePack_{kDevicePack};
    Trees localDisplay_{kLocalDisplay};
};

TEST_F(UpdateTest, KeepsASecondOneOfTheAddOnOutAndNoOther) {
    devicePack_.old.SetScript("preinst", "until [ -e /tmp/go_on ]; do sleep 0.1; done");
    devicePack_.ArrangeIn(*appliance_);
    localDisplay_.ArrangeIn(*appliance_);
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
    EXPECT_EQ(localDisplay_.fresh.Content(), Installed(kLocalDisplay));

    begin = Clock::now();
    EXPECT_EQ(kFailed, Update(*appliance_, kDevicePack, FilePath(kDevicePack)).Code());
    EXPECT_GE(Clock::now() - begin, 3000ms);
    EXPECT_LT(Clock::now() - begin, 4500ms);
    EXPECT_EQ(devicePack_.old.Content(), Installed(kDevicePack));

    const std::ofstream goOn(appliance_->TemporaryPath() / "go_on");
    EXPECT_TRUE(first.get());
    EXPECT_EQ(devicePack_.fresh.Content(), Installed(kDevicePack));
}

// A power cut may have thinned it.
TEST_F(UpdateTest, TakesNothingThatWasUnpackedBeforeTheLastStart) {
    devicePack_.ArrangeIn(*appliance_);
    localDisplay_.ArrangeIn(*appliance_);
    appliance_->Stop();
    appliance_->Launch();
    for (const Trees* trees : {&devicePack_, &localDisplay_}) {
        EXPECT_EQ(kFailed, Update(*appliance_, trees->addOn, FilePath(trees->addOn)).Code());
        EXPECT_EQ(trees->old.Content(), Installed(trees->addOn));
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
        for (const std::string& fault : InspectDuringUpdates(*appliance_, addOn, 1, 25)) {
            ADD_FAILURE() << addOn.name << " " << fault;
        }
    }
}

}  // namespace
}  // namespace e2e
