// "Update" on a real appliance: what it runs whatever becomes of that, and what it leaves alone.
#include "e2e/packages.h"
#include "e2e/processes.h"
#include "e2e/updatekill.h"
#include "e2e/updates.h"
#include "support/smalldisk.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>

namespace e2e {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kFailed = 400;
constexpr char kTarget[] = "/var/packages/Camvora/target/";

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

    // The programs of a request, the arguments with them.
    std::vector<std::string> ProgramsOf(const Answer& answer) {
        std::vector<std::string> programs;
        const Answer record = owner_.Get("/programs?request=" + answer.requestId);
        for (const Json::Value& program : record.Data()["programs"]) {
            programs.push_back(program["path"].asString());
            for (const Json::Value& argument : program["arguments"]) {
                programs.back() += " " + argument.asString();
            }
        }
        return programs;
    }

    const Trees devicePack_{kDevicePack};
    const Trees localDisplay_{kLocalDisplay};
};

TEST_F(UpdateTest, GoesOnWhateverItsScriptsDo) {
    std::ofstream(appliance_->PackagePath("target/etc/programs.conf")) << "time_limit_s=\"1\"\n";
    const std::string target = kTarget;
    const std::string scripts = target + "device_pack/script/";
    const std::string workDirectory = FilePath(kDevicePack);
    for (const char* text : {"exit 1", "sleep 600", "kill -9 $$", "kill -9 -$$"}) {
        SCOPED_TRACE(text);
        Trees trees(kDevicePack);
        trees.old.SetScript("preupgrade", text);
        trees.old.SetScript("preinst", text);
        trees.fresh.SetScript("postinst", text);
        trees.fresh.SetScript("postupgrade", text);
        trees.ArrangeIn(*appliance_);
        const Answer answer = Update(*appliance_, kDevicePack, workDirectory);
        EXPECT_TRUE(answer.Succeeded());
        EXPECT_EQ(trees.fresh.Content(), Installed(kDevicePack));
        EXPECT_EQ(
            (std::vector<std::string>{target + "scripts/S82camvora.sh stop", scripts + "preupgrade",
                                      scripts + "preinst", "/bin/rm -rf " + target + "device_pack",
                                      "/bin/mv -f " + workDirectory + "device_pack " + target + "device_pack",
                                      "/bin/rm -rf " + workDirectory, scripts + "postinst",
                                      scripts + "postupgrade", target + "scripts/S82camvora.sh start"}),
            ProgramsOf(answer));
    }
    fs::remove(appliance_->PackagePath("target/etc/programs.conf"));
}

TEST_F(UpdateTest, KeepsASecondOneOfTheAddOnOutAndNoOther) {
    Trees trees(kDevicePack);
    trees.old.SetScript("preinst", "until [ -e /tmp/go_on ]; do sleep 0.1; done");
    trees.ArrangeIn(*appliance_);
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
    const Answer second = Update(*appliance_, kDevicePack, FilePath(kDevicePack));
    EXPECT_EQ(kFailed, second.Code());
    EXPECT_GE(Clock::now() - begin, 3000ms);
    EXPECT_LT(Clock::now() - begin, 4500ms);
    EXPECT_TRUE(ProgramsOf(second).empty());
    EXPECT_EQ(trees.old.Content(), Installed(kDevicePack));
    EXPECT_EQ(trees.fresh.Content(), ListingOf(WorkDirectory(*appliance_, kDevicePack) / "device_pack"));

    const std::ofstream goOn(appliance_->TemporaryPath() / "go_on");
    EXPECT_TRUE(first.get());
    EXPECT_EQ(trees.fresh.Content(), Installed(kDevicePack));
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
        for (const std::string& fault : InspectDuringUpdates(*appliance_, addOn, Seed(), 25)) {
            ADD_FAILURE() << addOn.name << " " << fault;
        }
    }
}

TEST_F(UpdateTest, TouchesNothingThatIsNoWorkDirectoryOfTheAddOn) {
    if (fs::equivalent(appliance_->TemporaryPath(), "/tmp")) {
        GTEST_SKIP() << "without a private file system a fault would remove what is named";
    }
    devicePack_.ArrangeIn(*appliance_);
    localDisplay_.ArrangeIn(*appliance_);
    const std::string target = kTarget;
    const std::string own = FilePath(kDevicePack);
    fs::create_directory_symlink(target + "cv_addOns_device_pack", appliance_->PackagePath("target/link"));
    const Listing before = ListingOutside(*appliance_);
    const Listing workDirectory = ListingOf(WorkDirectory(*appliance_, kDevicePack));
    const std::string hostile[] = {"/",
                                   "/etc/",
                                   "../",
                                   "",
                                   own.substr(0, own.size() - 1),
                                   own + '\0',
                                   own + "\n",
                                   "\n" + own,
                                   own + "/",
                                   own + "../",
                                   target,
                                   target + "link/",
                                   target + "../target/cv_addOns_device_pack/",
                                   target + "device_pack/",
                                   FilePath(kLocalDisplay),
                                   FilePath(kDevicePack, true)};
    for (const std::string& path : hostile) {
        EXPECT_EQ(kFailed, Update(*appliance_, kDevicePack, path).Code()) << path;
        EXPECT_EQ(std::vector<std::string>(), ChangedPaths(before, ListingOutside(*appliance_))) << path;
    }
    EXPECT_EQ(workDirectory, ListingOf(WorkDirectory(*appliance_, kDevicePack)));
    EXPECT_EQ(localDisplay_.fresh.Content(),
              ListingOf(WorkDirectory(*appliance_, kLocalDisplay) / "local_display"));
}

// An appliance on a small disk, its work directories on others.
class UpdateAcrossDisks : public testing::Test {
protected:
    static void SetUpTestSuite() {
        constexpr std::size_t kDiskBytes = 128 * kMiB;
        if (!MountSmallDisk(disk_.Path(), kDiskBytes)) {
            return;
        }
        setenv("TMPDIR", disk_.Path().c_str(), 1);
        appliance_ = std::make_unique<Appliance>();
        unsetenv("TMPDIR");
        appliance_->Stop();
        MountWorkDirectories(*appliance_);
    }
    static void TearDownTestSuite() {
        appliance_.reset();
        umount2(disk_.Path().c_str(), MNT_DETACH);
    }
    void SetUp() override {
        if (appliance_ == nullptr) {
            GTEST_SKIP() << "no other disk can be had here";
        }
    }
    void TearDown() override {
        if (appliance_ != nullptr) {
            appliance_->Stop();
        }
    }

    inline static const TemporaryFolder disk_;
    inline static std::unique_ptr<Appliance> appliance_;
};

TEST_F(UpdateAcrossDisks, PutsTheOldTreeBackWhenTheNewOneFindsNoRoom) {
    appliance_->Launch();
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        SCOPED_TRACE(addOn.name);
        const Trees trees(addOn);
        trees.ArrangeIn(*appliance_);
        {
            const int filler = open(disk_.PathOf("filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            EXPECT_EQ(0,
                      posix_fallocate(filler, 0, static_cast<off_t>(fs::space(disk_.Path()).free - 400'000)));
            close(filler);
        }
        EXPECT_EQ(kFailed, Update(*appliance_, addOn, FilePath(addOn)).Code());
        EXPECT_EQ(trees.old.Content(), ListingOf(PlaceOf(*appliance_, addOn)));
        fs::remove(disk_.PathOf("filler"));
        EXPECT_TRUE(Update(*appliance_, addOn, FilePath(addOn)).Succeeded());
        EXPECT_EQ(trees.fresh.Content(), ListingOf(PlaceOf(*appliance_, addOn)));
    }
}

// A mount can be neither renamed nor removed.
TEST_F(UpdateAcrossDisks, LeavesAPlaceThatIsBusy) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        ASSERT_TRUE(MountSmallDisk(PlaceOf(*appliance_, addOn), kMiB));
    }
    appliance_->Launch();
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        const Trees trees(addOn);
        trees.ArrangeIn(*appliance_);
        EXPECT_EQ(kFailed, Update(*appliance_, addOn, FilePath(addOn)).Code());
        EXPECT_EQ(trees.old.Content(), ListingOf(PlaceOf(*appliance_, addOn)));
    }
}

}  // namespace
}  // namespace e2e
