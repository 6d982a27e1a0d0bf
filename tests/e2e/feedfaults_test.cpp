// Downloads from a feed that fails, that are killed, and that are cancelled.
#include "e2e/online.h"
#include "e2e/packages.h"
#include "e2e/processes.h"

#include <chrono>
#include <memory>

namespace e2e {
namespace {

using std::chrono::milliseconds;

constexpr int kReady = 2;
constexpr int kFailed = 4;

struct FaultCase {
    const char* name;
    FeedFault fault;
};

FeedFault Cut(int tenths) {
    FeedFault fault;
    fault.cutAt = kMiB * static_cast<std::size_t>(tenths) / 10;
    return fault;
}

FeedFault Status(int status) {
    FeedFault fault;
    fault.status = status;
    return fault;
}

FeedFault Length(long error) {
    FeedFault fault;
    fault.lengthError = error;
    return fault;
}

FeedFault Altered() {
    FeedFault fault;
    fault.isAltered = true;
    return fault;
}

const FaultCase kFaultCases[] = {
    {"cut_at_once", Cut(0)}, {"cut_at_1", Cut(1)},       {"cut_at_2", Cut(2)},
    {"cut_at_3", Cut(3)},    {"cut_at_4", Cut(4)},       {"cut_at_5", Cut(5)},
    {"cut_at_6", Cut(6)},    {"cut_at_7", Cut(7)},       {"cut_at_8", Cut(8)},
    {"cut_at_9", Cut(9)},    {"too_long", Length(1000)}, {"too_short", Length(-1000)},
    {"altered", Altered()},  {"missing", Status(404)},   {"server_error", Status(500)},
};

class DownloadFaultTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>();
        folder_ = std::make_unique<FeedFolder>(*appliance_);
        feed_ = std::make_unique<FaultyFeed>(*folder_);
        folder_->Subscribe(*appliance_, feed_->Url());
        package_ = MakePackage(kLocalDisplayService, Content(kMiB, 1));
        folder_->Publish("display.spk", package_);
        installed_ = Version();
    }
    static void TearDownTestSuite() {
        appliance_.reset();
        feed_.reset();
        folder_.reset();
    }

    static std::string Version() {
        return appliance_->Owner()
            .AddOns("GetInfo", Param("service", kLocalDisplayService))
            .Data()["version"]
            .asString();
    }

    inline static std::unique_ptr<Appliance> appliance_;
    inline static std::unique_ptr<FeedFolder> folder_;
    inline static std::unique_ptr<FaultyFeed> feed_;
    inline static std::string package_;
    inline static std::string installed_;
};

class FeedFaultTest : public DownloadFaultTest, public testing::WithParamInterface<FaultCase> {};

TEST_P(FeedFaultTest, LeavesTheAddOnAndALaterDownloadSucceeds) {
    std::filesystem::remove_all(appliance_->PackagePath("target/@CVData/download"));
    feed_->SetFault(GetParam().fault);
    EXPECT_EQ(kFailed, Download(*appliance_, kLocalDisplayService));
    EXPECT_EQ(400, appliance_->Owner().AddOns("Update", Param("service", kLocalDisplayService)).Code());
    EXPECT_EQ(installed_, Version());
    feed_->SetFault({});
    EXPECT_EQ(kReady, Download(*appliance_, kLocalDisplayService));
    EXPECT_TRUE(package_ == DownloadedPackage(*appliance_));
}

INSTANTIATE_TEST_SUITE_P(, FeedFaultTest, testing::ValuesIn(kFaultCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DownloadFaultTest, AnyKillLeavesWhatCanBeFinished) {
    EXPECT_EQ(std::vector<std::string>{}, KillDownloads(*appliance_, *feed_, package_, 1, 20));
}

TEST_F(DownloadFaultTest, ACancelAtTheEndLeavesAllOrNothing) {
    feed_->SetFault({});
    EXPECT_EQ(std::vector<std::string>{}, CancelDownloads(*appliance_, package_, 1, 30));
}

// Without a whole answer the cancel does not wait for the server.
TEST_F(DownloadFaultTest, ACancelEndsAServerThatSendsAByteASecond) {
    std::filesystem::remove_all(appliance_->PackagePath("target/@CVData/download"));
    FeedFault drip;
    drip.chunkBytes = 1;
    drip.pause = std::chrono::seconds(1);
    feed_->SetFault(drip);
    HttpCalls owner = appliance_->Owner();
    EXPECT_TRUE(owner.AddOns("DownloadStart", Param("service", kLocalDisplayService)).Succeeded());
    EXPECT_TRUE(WaitUntil([] { return Downloader(*appliance_) > 0; }));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(owner.AddOns("DownloadCancel", Param("service", kLocalDisplayService)).Succeeded());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_LT(Downloader(*appliance_), 0);
    feed_->SetFault({});
}

}  // namespace
}  // namespace e2e
