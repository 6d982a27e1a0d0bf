// Online updates, from the release check to the installed add-on.
#include "e2e/online.h"
#include "e2e/feed.h"
#include "e2e/packages.h"
#include "e2e/processes.h"

#include <chrono>
#include <filesystem>
#include <future>
#include <vector>

namespace e2e {
namespace {

class OnlineTest : public testing::Test {
protected:
    int State() { return UpdateStateOf(appliance_, kDevicePackService); }

    Appliance appliance_;
    Feed feed_{appliance_};
    HttpCalls owner_ = appliance_.Owner();
    const Json::Value service_ = Param("service", kDevicePackService);
};

TEST_F(OnlineTest, GoesFromTheCheckToTheInstalledAddOn) {
    feed_.Publish("device_pack-2.2.0-0140");
    feed_.Publish("device_pack-2.3.0-0152");
    // The feed has nothing of the Local Display, so what is true of the Device Pack counts for it, too.
    EXPECT_EQ(2, owner_.AddOns("GetUpdateInfo").Data()["newUpdateCnt"].asInt());
    EXPECT_EQ(2, Download(appliance_, kDevicePackService));
    const Json::Value progress = owner_.AddOns("DownloadProgress", service_).Data();
    EXPECT_EQ("device_pack 2.3.0-0152", progress["version"].asString());
    EXPECT_EQ(100, progress["percent"].asInt());
    EXPECT_EQ(3, State());
    EXPECT_TRUE(owner_.AddOns("Update", service_).Succeeded());
    EXPECT_EQ("2.3.0-0152", owner_.AddOns("GetInfo", service_).Data()["version"].asString());
    EXPECT_EQ(1, State());
    EXPECT_EQ(400, owner_.AddOns("DownloadStart", service_).Code());
    EXPECT_TRUE(std::filesystem::is_empty(appliance_.PackagePath("target/@CVData/download")));
}

TEST_F(OnlineTest, TellsEveryStateOfAnAddOn) {
    EXPECT_EQ(7, State()) << "there is no index";
    feed_.Publish("device_pack-2.0.4-0118");
    EXPECT_EQ(1, State());
    feed_.Publish("device_pack-2.2.2-0142-hanging");
    EXPECT_EQ(2, State());
    feed_.Send(Sending::kNotAtAll);
    EXPECT_EQ(4, Download(appliance_, kDevicePackService));
    EXPECT_EQ(5, State());
    feed_.Send(Sending::kByteByByte);
    EXPECT_TRUE(owner_.AddOns("DownloadStart", service_).Succeeded());
    EXPECT_TRUE(WaitUntil([&] { return State() == 4; }));
    EXPECT_TRUE(owner_.AddOns("DownloadCancel", service_).Succeeded());
    feed_.Send(Sending::kAtOnce);
    EXPECT_EQ(2, Download(appliance_, kDevicePackService));
    EXPECT_EQ(3, State());
    auto update = std::async(std::launch::async,
                             [this] { return appliance_.Owner().AddOns("Update", service_).Succeeded(); });
    EXPECT_TRUE(WaitUntil([&] { return State() == 6; }));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(6, State());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
    appliance_.Kill();  // the script hangs
    (void)update.get();
}

TEST_F(OnlineTest, ChecksOnceAtATimeForManyClients) {
    constexpr int kClients = 50;
    feed_.Publish("device_pack-2.3.0-0152");
    feed_.Publish("local_display-1.6.0-0071");
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
    EXPECT_EQ(2 * kClients, feed_.Checks());
    EXPECT_EQ(1, feed_.ChecksAtOnce());
}

}  // namespace
}  // namespace e2e
