// An appliance whose disk is full.
#include "e2e/appliance.h"
#include "e2e/ctl.h"
#include "e2e/packages.h"
#include "e2e/processes.h"
#include "support/smalldisk.h"

#include <fcntl.h>
#include <json/writer.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDiskBytes = 128 * kMiB;
constexpr std::size_t kPackageBytes = kMiB;
constexpr char kWorkFolder[] = "target/cv_addOns_local_display";

class FullDiskTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!MountSmallDisk(disk_.Path(), kDiskBytes)) {
            return;
        }
        setenv("TMPDIR", disk_.Path().c_str(), 1);
        appliance_ = std::make_unique<Appliance>();
        unsetenv("TMPDIR");
        Upload(*appliance_, MakePackage(kLocalDisplayService, "kept"));
        before_ = Files();
    }
    static void TearDownTestSuite() {
        appliance_.reset();
        umount(disk_.Path().c_str());
    }
    void SetUp() override {
        if (appliance_ == nullptr) {
            GTEST_SKIP() << "no small disk to be had: the machine refuses mount and user namespaces";
        }
    }

    // Fills the disk up to that. Somebody else may still be filling it, too.
    static void LeaveFree(std::size_t sizeBytes) {
        const int filler = open(Filler().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        EXPECT_TRUE(WaitUntil([&] {
            const auto size = static_cast<off_t>(fs::space(disk_.Path()).free - sizeBytes);
            return size == 0 || posix_fallocate(filler, 0, size) == 0;
        }));
        close(filler);
    }
    static std::string Filler() { return disk_.PathOf("filler"); }

    // What must stay as it was: installed add-ons and uploads, by path.
    static std::map<std::string, std::string> Files() {
        std::map<std::string, std::string> files;
        for (const char* folder : {"target/device_pack", "target/local_display", kUploads}) {
            for (const auto& entry : fs::recursive_directory_iterator(appliance_->PackagePath(folder))) {
                files[entry.path()] = entry.is_regular_file() ? ReadFile(entry.path()) : "";
            }
        }
        return files;
    }

    // That the package could not be had, and that nothing of it is left.
    static void ExpectNoPackage(const Answer& answer, const std::string& workFolder) {
        EXPECT_EQ(400, answer.Code()) << answer.body;
        EXPECT_EQ("invalid_file", answer.Data()["errinfo"]["key"].asString());
        EXPECT_TRUE(before_ == Files());
        EXPECT_FALSE(fs::exists(appliance_->PackagePath(workFolder + "/local_display/conf")));
        EXPECT_FALSE(fs::exists(appliance_->PackagePath(workFolder + "/local_display/blob")));
    }

    inline static const TemporaryFolder disk_;
    inline static std::unique_ptr<Appliance> appliance_;
    inline static std::map<std::string, std::string> before_;
};

TEST_F(FullDiskTest, AnUploadFailsWhenTheDiskBecomesFull) {
    const std::string half = Content(kPackageBytes, 1);
    const auto upload = [&half](bool fillsDisk) {
        const httplib::MultipartFormDataProviderItems form = {
            {"addonsSpkFile",
             [&half, fillsDisk](std::size_t offset, httplib::DataSink& sink) {
                 if (offset > 0 && fillsDisk) {
                     LeaveFree(0);
                 }
                 sink.write(half.data(), half.size());
                 if (offset > 0) {
                     sink.done();
                 }
                 return true;
             },
             "x.spk", ""}};
        return ToAnswer(
            appliance_->Owner().Client().Post("/api/ORVA.Camvora.AddOns/v1/Upload", {}, {}, form));
    };
    EXPECT_EQ(1020, upload(true).Code());
    EXPECT_TRUE(before_ == Files());
    fs::remove(Filler());
    const Answer answer = upload(false);
    EXPECT_TRUE(answer.Succeeded()) << answer.body;
    fs::remove(appliance_->PackagePath(kUploads) /
               fs::path(answer.Data()["pkgInfo"]["filePath"].asString()).filename());
}

TEST_F(FullDiskTest, UnpackingFailsWhereverTheDiskIsFull) {
    const std::string package = MakePackage(kLocalDisplayService, Content(kPackageBytes, 1));
    constexpr std::size_t kStep = kPackageBytes / 8;
    for (std::size_t freeBytes = kStep; freeBytes < 2 * kPackageBytes; freeBytes += kStep) {
        SCOPED_TRACE(freeBytes);
        fs::remove_all(appliance_->PackagePath(kWorkFolder));
        const Json::Value params = Upload(*appliance_, package);
        LeaveFree(freeBytes);
        ExpectNoPackage(appliance_->Owner().AddOns("GetPkgInfo", params), kWorkFolder);
        fs::remove(Filler());
    }
    EXPECT_TRUE(appliance_->Owner().AddOns("GetPkgInfo", Upload(*appliance_, package)).Succeeded());
}

TEST_F(FullDiskTest, AFetchFailsWhereverTheDiskIsFull) {
    const Appliance host;
    Pair(host, *appliance_);
    const std::string package = MakePackage(kLocalDisplayService, Content(kPackageBytes, 1));
    const auto fetch = [&] {
        Json::Value params = Upload(host, package);
        params["isRedirectCgi"] = true;
        return appliance_->Owner().AddOns("GetPkgInfo", params);
    };
    for (const std::size_t freeBytes : {std::size_t{0}, kPackageBytes / 2}) {
        SCOPED_TRACE(freeBytes);
        LeaveFree(freeBytes);
        ExpectNoPackage(fetch(), std::string(kWorkFolder) + "_host");
        fs::remove(Filler());
    }
    EXPECT_TRUE(fetch().Succeeded());
}

}  // namespace
}  // namespace e2e
