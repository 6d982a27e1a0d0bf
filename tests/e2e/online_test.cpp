// Online updates, from the release check to the installed add-on.
#include "e2e/online.h"
#include "e2e/packages.h"
#include "e2e/processes.h"

#include <chrono>
#include <future>
#include <memory>
#include <vector>

namespace e2e {
namespace {

using std::chrono::milliseconds;

std::string Sample(const std::string& name) {
    return ReadFile(CAMVORA_BUILD_FOLDER "/packages/" + name + ".spk");
}

class OnlineTest : public testing::Test {
protected:
    Json::Value Info(int service) {
        return appliance_.Owner().AddOns("GetInfo", Param("service", service)).Data();
    }

    Appliance appliance_;
    FeedFolder folder_{appliance_};
};

TEST_F(OnlineTest, GoesFromTheCheckToTheInstalledAddOn) {
    const StaticFeed feed(folder_);
    folder_.Subscribe(appliance_, feed.Url());
    folder_.Publish("older.spk", Sample("device_pack-2.2.0-0140"));
    folder_.Publish("newest.spk", Sample("device_pack-2.3.0-0152"));
    HttpCalls owner = appliance_.Owner();
    // The feed has nothing of the Local Display, so what is true of the Device Pack counts for it, too.
    EXPECT_EQ(2, owner.AddOns("GetUpdateInfo").Data()["newUpdateCnt"].asInt());
    EXPECT_EQ(2, UpdateStateOf(appliance_, kDevicePackService));
    EXPECT_EQ(2, Download(appliance_, kDevicePackService));
    const Json::Value progress =
        owner.AddOns("DownloadProgress", Param("service", kDevicePackService)).Data();
    EXPECT_EQ("device_pack 2.3.0-0152", progress["version"].asString());
    EXPECT_EQ(100, progress["percent"].asInt());
    EXPECT_EQ(3, UpdateStateOf(appliance_, kDevicePackService));
    EXPECT_TRUE(owner.AddOns("Update", Param("service", kDevicePackService)).Succeeded());
    EXPECT_EQ("2.3.0-0152", Info(kDevicePackService)["version"].asString());
    EXPECT_EQ(1, UpdateStateOf(appliance_, kDevicePackService));
    EXPECT_EQ(400, owner.AddOns("DownloadStart", Param("service", kDevicePackService)).Code());
    EXPECT_EQ("", DownloadedPackage(appliance_));
}

TEST_F(OnlineTest, TellsEveryStateOfAnAddOn) {
    FaultyFeed feed(folder_);
    folder_.Subscribe(appliance_, feed.Url());
    const auto state = [this] { return UpdateStateOf(appliance_, kDevicePackService); };
    EXPECT_EQ(7, state()) << "there is no index";
    folder_.Publish("installed.spk", Sample("device_pack-2.0.4-0118"));
    EXPECT_EQ(1, state());
    folder_.Publish("hanging.spk", Sample("device_pack-2.2.2-0142-hanging"));
    EXPECT_EQ(2, state());
    FeedFault missing;
    missing.status = 404;
    feed.SetFault(missing);
    EXPECT_EQ(4, Download(appliance_, kDevicePackService));
    EXPECT_EQ(5, state());
    FeedFault slow;
    slow.chunkBytes = 1;
    slow.pause = milliseconds(100);
    feed.SetFault(slow);
    HttpCalls owner = appliance_.Owner();
    EXPECT_TRUE(owner.AddOns("DownloadStart", Param("service", kDevicePackService)).Succeeded());
    EXPECT_TRUE(WaitUntil([&] { return state() == 4; }));
    EXPECT_TRUE(owner.AddOns("DownloadCancel", Param("service", kDevicePackService)).Succeeded());
    feed.SetFault({});
    EXPECT_EQ(2, Download(appliance_, kDevicePackService));
    EXPECT_EQ(3, state());
    auto update = std::async(std::launch::async, [this] {
        return appliance_.Owner().AddOns("Update", Param("service", kDevicePackService)).Succeeded();
    });
    EXPECT_TRUE(WaitUntil([&] { return state() == 6; }));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(6, state());
    EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(300));
    appliance_.Kill();  // the script hangs
    (void)update.get();
}

// One check at a time reaches the feed: of many that are slow the last ones do not get their turn.
TEST_F(OnlineTest, KnowsNothingWhileOthersCheckForTooLong) {
    FaultyFeed feed(folder_);
    folder_.Subscribe(appliance_, feed.Url());
    folder_.Publish("display.spk", Sample("local_display-1.6.0-0071"));
    feed.SetIndexDelay(std::chrono::seconds(8));
    std::vector<std::future<int>> states;
    for (int i = 0; i < 6; ++i) {
        states.push_back(std::async(std::launch::async, [this] {
            HttpCalls owner = appliance_.Owner();
            owner.Client().set_read_timeout(std::chrono::seconds(60));
            return owner.AddOns("CheckUpdateInfo", Param("service", kLocalDisplayService))
                .Data()["status"]
                .asInt();
        }));
    }
    std::vector<int> counts(8);
    for (auto& state : states) {
        ++counts[static_cast<std::size_t>(state.get())];
    }
    EXPECT_EQ(4, counts[2]);
    EXPECT_EQ(2, counts[0]);
    EXPECT_EQ(1, feed.ChecksAtOnce());
}

TEST_F(OnlineTest, ChecksOnceAtATimeForManyClients) {
    constexpr int kClients = 50;
    FaultyFeed feed(folder_);
    folder_.Subscribe(appliance_, feed.Url());
    folder_.Publish("pack.spk", Sample("device_pack-2.3.0-0152"));
    folder_.Publish("display.spk", Sample("local_display-1.6.0-0071"));
    std::vector<std::future<int>> counts;
    counts.reserve(kClients);
    for (int i = 0; i < kClients; ++i) {
        counts.push_back(std::async(std::launch::async, [this] {
            return appliance_.Owner().AddOns("GetUpdateInfo").Data()["newUpdateCnt"].asInt();
        }));
    }
    for (auto& count : counts) {
        EXPECT_EQ(2, count.get());
    }
    EXPECT_EQ(2 * kClients, feed.Checks());
    EXPECT_EQ(1, feed.ChecksAtOnce());
}

}  // namespace
}  // namespace e2e
