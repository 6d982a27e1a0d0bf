// What requests do, from begin to end, as others see it.
#include "e2e/appliance.h"
#include "e2e/feed.h"
#include "e2e/online.h"
#include "e2e/packages.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"
#include "e2e/restores.h"

#include <csignal>
#include <string>

namespace e2e {
namespace {

class OperationsTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start();
        ASSERT_EQ(200, appliance_->Owner().Get("/health").status);  // the database is there now
    }

    // The newest one in short.
    std::string Newest() { return FromEnd(1); }
    std::string BeforeNewest() { return FromEnd(2); }
    std::string FromEnd(unsigned count) {
        const Json::Value operations = owner_.Get("/operations").Data()["operations"];
        return operations.size() < count ? "" : Short(operations[operations.size() - count]);
    }
    static std::string Short(const Json::Value& operation) {
        return operation["who"].asString() + " " + operation["method"].asString() + " " +
               operation["service"].asString() + ": " + operation["fromVersion"].asString() + " > " +
               operation["toVersion"].asString() + " " + operation["outcome"].asString() + " " +
               operation["code"].asString();
    }
    bool WaitForNewest(const std::string& expected) {
        const bool came = WaitUntil([&] { return Newest() == expected; });
        EXPECT_TRUE(came) << Newest();
        return came;
    }

    // Makes the next start of service 3 take two seconds: its daemon does not end.
    void HoldDaemon() {
        ASSERT_TRUE(owner_.AddOns("Enable", Param("service", 3)).Succeeded());
        ASSERT_TRUE(WaitForNewest("client Enable 3:  >  done 0"));
        for (const pid_t pid : appliance_->Daemons()) {
            kill(pid, SIGSTOP);
        }
        ASSERT_TRUE(owner_.AddOns("Enable", Param("service", 3)).Succeeded());
        ASSERT_TRUE(WaitForNewest("client Enable 3:  >  running 0"));
    }
};

TEST_F(OperationsTest, TellWhatBecameOfDownloads) {
    Feed feed(*appliance_);
    feed.Publish("device_pack-2.2.0-0140");
    Download(*appliance_, kDevicePackService);
    WaitForNewest("client DownloadStart 1: 2.1.0-0130 > 2.2.0-0140 done 0");

    feed.AnswerChecks(1);  // of the request, but not of the download
    ASSERT_TRUE(owner_.AddOns("DownloadStart", Param("service", kDevicePackService)).Succeeded());
    WaitForNewest("client DownloadStart 1: 2.1.0-0130 >  failed 0");
    EXPECT_EQ(2, DownloadStateOf(*appliance_, kDevicePackService));  // what was ready before
    feed.AnswerChecks(Feed::kAllChecks);

    feed.Publish("device_pack-2.3.0-0152");
    feed.Send(Sending::kByteByByte);
    const Json::Value service = Param("service", kDevicePackService);
    ASSERT_TRUE(owner_.AddOns("DownloadStart", service).Succeeded());
    ASSERT_TRUE(WaitUntil([] { return DownloadStateOf(*appliance_, kDevicePackService) == 1; }));
    ASSERT_TRUE(owner_.AddOns("DownloadCancel", service).Succeeded());
    EXPECT_EQ("client DownloadCancel 1: 2.1.0-0130 >  done 0", Newest());
    EXPECT_TRUE(WaitUntil([this] {
        return BeforeNewest() == "client DownloadStart 1: 2.1.0-0130 >  cancelled 0";
    })) << BeforeNewest();

    feed.Send(Sending::kNotAtAll);
    Download(*appliance_, kDevicePackService);
    WaitForNewest("client DownloadStart 1: 2.1.0-0130 > 2.3.0-0152 failed 0");
    const Json::Value operations = owner_.Get("/operations").Data()["operations"];
    EXPECT_NE("", operations[operations.size() - 1]["problem"].asString());
}

TEST_F(OperationsTest, EndAsTheirAnswersSay) {
    AddOnTree old(kDevicePack, "1.0.0-0001");
    AddRestoreScript(kDevicePack, old);
    Arrange(*appliance_, kDevicePack, old, AddOnTree(kDevicePack, "2.0.0-0002"));
    EXPECT_TRUE(Restore(*appliance_, kDevicePack).Succeeded());
    EXPECT_EQ("client Restore 1: 1.0.0-0001 > 2.0.3-0112 done 0", Newest());
    const Answer update = Update(*appliance_, kDevicePack, FilePath(kDevicePack));
    EXPECT_TRUE(update.Succeeded());
    EXPECT_EQ("client Update 1: 2.0.3-0112 > 2.0.0-0002 done 0", Newest());
    const Json::Value all = owner_.Get("/operations").Data()["operations"];
    const Json::Value& newest = all[all.size() - 1];
    EXPECT_EQ(update.requestId, newest["request"].asString());
    EXPECT_LT(0, newest["durationMs"].asInt());
    const Json::Value one = owner_.Get("/operations?id=" + newest["id"].asString()).Data()["operations"];
    ASSERT_EQ(1U, one.size());
    EXPECT_EQ(newest, one[0]);
    EXPECT_EQ(400, Update(*appliance_, kDevicePack, FilePath(kDevicePack)).Code());
    EXPECT_EQ("client Update 1: 2.0.0-0002 >  failed 400", Newest());
}

TEST_F(OperationsTest, AreThoseOfCallersWhoAreAdmitted) {
    ASSERT_TRUE(owner_.AddOns("Restore", Param("service", 3)).Succeeded());
    const std::string before = Newest();
    EXPECT_EQ(105, stranger_.AddOns("Restore", Param("service", 6)).Code());
    EXPECT_TRUE(owner_.AddOns("List").Succeeded());
    EXPECT_EQ(before, Newest());
}

TEST_F(OperationsTest, AreSeenToTheEndOfTheirDetachedWork) {
    HoldDaemon();
    RawConnection stream = OpenStream(appliance_->Url(), appliance_->Token());
    EXPECT_NE(std::string::npos,
              stream.ReceiveUntil("\n\n").find(R"("method":"Enable","outcome":"running")"));
    EXPECT_TRUE(WaitForNewest("client Enable 3:  >  done 0"));
    EXPECT_NE(std::string::npos, stream.ReceiveUntil(R"("operations":[],)").find("event: state"));

    HoldDaemon();
    for (const pid_t worker : appliance_->Workers()) {
        kill(worker, SIGKILL);
    }
    EXPECT_TRUE(WaitForNewest("client Enable 3:  >  failed 0"));
}

TEST_F(OperationsTest, AreLostWithTheProcessThatWatchesThem) {
    HoldDaemon();
    const pid_t before = appliance_->HttpProcess();
    kill(before, SIGKILL);
    ASSERT_TRUE(
        WaitUntil([before] { return appliance_->HttpProcess() > 0 && appliance_->HttpProcess() != before; }));
    EXPECT_TRUE(WaitForNewest("client Enable 3:  >  lost 0"));
}

}  // namespace
}  // namespace e2e
