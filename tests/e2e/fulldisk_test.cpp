// An appliance whose disk is full.
#include "e2e/packages.h"
#include "e2e/restores.h"
#include "e2e/updatekill.h"
#include "support/smalldisk.h"

#include <json/writer.h>
#include <sys/mount.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDiskBytes = 128 * kMiB;
constexpr std::size_t kLessThanATree = 300'000;

class FullDiskTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!MountSmallDisk(disk_.Path(), kDiskBytes)) {
            return;
        }
        setenv("TMPDIR", disk_.Path().c_str(), 1);
        appliance_ = std::make_unique<Appliance>();
        unsetenv("TMPDIR");
    }
    static void TearDownTestSuite() {
        appliance_.reset();
        umount2(disk_.Path().c_str(), MNT_DETACH);
    }
    void SetUp() override {
        if (appliance_ == nullptr) {
            GTEST_SKIP() << "no small disk to be had: the machine refuses mount and user namespaces";
        }
    }

    static void LeaveFree(std::size_t sizeBytes) {
        const fs::space_info space = fs::space(disk_.Path());
        ASSERT_TRUE(ResizeSmallDisk(disk_.Path(), space.capacity - space.free + sizeBytes));
    }
    static void MakeRoom() { ASSERT_TRUE(ResizeSmallDisk(disk_.Path(), kDiskBytes)); }

    inline static const TemporaryFolder disk_;
    inline static std::unique_ptr<Appliance> appliance_;
};

TEST_F(FullDiskTest, UnpackingFailsWhereverTheDiskIsFull) {
    Upload(*appliance_, MakePackage(kLocalDisplayService, "kept"));
    const std::string package = MakePackage(kLocalDisplayService, Content(kMiB, 1));
    const fs::path workDirectory = WorkDirectory(*appliance_, kLocalDisplay);
    const Listing before = ListingOutside(*appliance_);
    constexpr std::size_t kStep = kMiB / 8;
    for (std::size_t freeBytes = 0; freeBytes < 2 * kMiB; freeBytes += kStep) {
        SCOPED_TRACE(freeBytes);
        fs::remove_all(workDirectory);
        const Json::Value params = Upload(*appliance_, package);
        LeaveFree(freeBytes);
        const Answer answer = appliance_->Owner().AddOns("GetPkgInfo", params);
        MakeRoom();
        EXPECT_EQ("invalid_file", answer.Data()["errinfo"]["key"].asString()) << answer.body;
        EXPECT_EQ(std::vector<std::string>(), ChangedPaths(before, ListingOutside(*appliance_)));
        EXPECT_FALSE(fs::exists(workDirectory / "local_display/conf"));
    }
    EXPECT_TRUE(appliance_->Owner().AddOns("GetPkgInfo", Upload(*appliance_, package)).Succeeded());
}

TEST_F(FullDiskTest, ARestoreLeavesWhatIsInstalled) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        SCOPED_TRACE(addOn.name);
        const fs::path place = PlaceOf(*appliance_, addOn);
        AddOnTree(addOn, "0.9.0-0009").CopyTo(FactoryOf(*appliance_, addOn));
        const Listing before = ListingOf(place);
        LeaveFree(kLessThanATree);
        EXPECT_TRUE(Restore(*appliance_, addOn).Succeeded());
        EXPECT_EQ(before, ListingOf(place));
        EXPECT_FALSE(fs::exists(place.string() + ".fresh"));
        MakeRoom();
        EXPECT_TRUE(Restore(*appliance_, addOn).Succeeded());
        EXPECT_EQ(ListingOf(FactoryOf(*appliance_, addOn)), ListingOf(place));
    }
}

// The new tree is copied, from a disk of its own.
TEST_F(FullDiskTest, AnUpdatePutsTheOldTreeBack) {
    appliance_->Stop();
    ASSERT_TRUE(MountWorkDirectories(*appliance_));
    appliance_->Launch();
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        SCOPED_TRACE(addOn.name);
        const fs::path place = PlaceOf(*appliance_, addOn);
        const AddOnTree old(addOn, "1.0.0-0001");
        const AddOnTree fresh(addOn, "2.0.0-0002");
        Arrange(*appliance_, addOn, old, fresh);
        LeaveFree(kLessThanATree);
        EXPECT_FALSE(Update(*appliance_, addOn, FilePath(addOn)).Succeeded());
        EXPECT_EQ(old.Content(), ListingOf(place));
        MakeRoom();
        EXPECT_TRUE(Update(*appliance_, addOn, FilePath(addOn)).Succeeded());
        EXPECT_EQ(fresh.Content(), ListingOf(place));
    }
}

}  // namespace
}  // namespace e2e
