// The host's processes: they are started again when they fail, and none is left when the host stops.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <stdexcept>

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;

std::future<Answer> CallInBackground(const Appliance& appliance, const std::string& method, int ms = 0) {
    EXPECT_TRUE(appliance.WaitForRequests(0));
    auto call = std::async(std::launch::async, [&appliance, method, ms] {
        return appliance.Owner().Test(method, Param("ms", ms));
    });
    EXPECT_TRUE(appliance.WaitForRequests(1));
    return call;
}

class LifecycleTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(Appliance::WithTestModule()); }
    void SetUp() override { ASSERT_EQ(200, owner_.Get("/health").status); }

    void ExpectHealthSoon() {
        EXPECT_TRUE(WaitUntil([this] { return owner_.Get("/health").status == 200; }));
    }
};

TEST_F(LifecycleTest, TheRequestServerIsStartedAgain) {
    auto running = CallInBackground(*appliance_, "Hang");
    const pid_t killed = appliance_->RequestServer();
    kill(killed, SIGKILL);
    const Answer answer = running.get();
    EXPECT_EQ(503, answer.status);
    EXPECT_EQ(1015, answer.Code());
    ExpectHealthSoon();
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
    EXPECT_NE(killed, appliance_->RequestServer());
}

TEST_F(LifecycleTest, HealthFailsWhileRequestsAreNotServed) {
    const pid_t requestServer = appliance_->RequestServer();
    kill(requestServer, SIGSTOP);
    EXPECT_EQ(503, owner_.Get("/health").status);
    kill(requestServer, SIGCONT);
    EXPECT_EQ(200, owner_.Get("/health").status);
}

TEST_F(LifecycleTest, TheHttpServerIsStartedAgainAtTheSameAddress) {
    kill(appliance_->HttpProcess(), SIGKILL);
    ExpectHealthSoon();
}

TEST(HostEndTest, ItGivesUpWhenAProcessKeepsFailing) {
    Appliance appliance(Appliance::WithTestModule());
    ASSERT_EQ(200, appliance.Owner().Get("/health").status);
    const auto hasGivenUp = [&] {
        const pid_t requestServer = appliance.RequestServer();
        if (requestServer > 0) {
            kill(requestServer, SIGKILL);
        }
        return !appliance.IsRunning();
    };
    ASSERT_TRUE(WaitUntil(hasGivenUp));
    EXPECT_NE(0, appliance.WaitForEnd());
}

TEST(HostEndTest, StopLetsWorkFinishAndEndsBusyConnectionsAndStreams) {
    Appliance appliance(Appliance::WithTestModule());
    Json::Value params = Param("path", "/var/packages/Camvora/done");
    params["ms"] = 3000;
    ASSERT_TRUE(appliance.Owner().Test("Detach", params).Succeeded());
    RawConnection stream = OpenStream(appliance.Url(), appliance.Token());
    EXPECT_NE("", stream.ReceiveUntil("event: snapshot"));
    auto running = CallInBackground(appliance, "Sleep", 2000);
    RawConnection busy(appliance.Url());
    for (int i = 0; i < 50; ++i) {
        busy.Send(PostText("Sleep", R"({"ms":500})"));
    }
    EXPECT_NE("", busy.ReceiveUntil("}"));
    const auto begin = Clock::now();
    appliance.Stop();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(200, running.get().status);
    EXPECT_TRUE(std::filesystem::exists(appliance.PackagePath("done")));
}

TEST(HostEndTest, StopDoesNotWaitForEver) {
    Appliance appliance(Appliance::WithTestModule({"--drain-time", "1"}));
    Json::Value params = Param("path", "/var/packages/Camvora/never");
    params["ms"] = 600'000;
    ASSERT_TRUE(appliance.Owner().Test("Detach", params).Succeeded());
    auto running = CallInBackground(appliance, "Hang");
    const auto begin = Clock::now();
    appliance.Stop();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(8));
    EXPECT_NE(200, running.get().status);
}

// The power goes while an action ends a daemon that does not heed it.
TEST(HostEndTest, WhatAKilledApplianceLeftIsGoneAtTheNextStart) {
    const auto hasStatus = [](const Appliance& appliance, int status) {
        return WaitUntil([&] {
            const Json::Value info = appliance.Owner().AddOns("GetInfo", Param("service", 3)).Data();
            return info["status"] == status && info["blRunning"].asBool();
        });
    };
    Appliance appliance;
    ASSERT_TRUE(appliance.Owner().AddOns("Enable", Param("service", 3)).Succeeded());
    ASSERT_TRUE(hasStatus(appliance, 1));
    for (const pid_t pid : appliance.Daemons()) {
        kill(pid, SIGSTOP);
    }
    ASSERT_TRUE(appliance.Owner().AddOns("Enable", Param("service", 3)).Succeeded());
    ASSERT_TRUE(hasStatus(appliance, 4));
    EXPECT_TRUE(std::filesystem::exists(appliance.TemporaryPath() / "cv_service3.lock"));
    const auto releaseLock = appliance.TemporaryPath() / "cv_addons_lock";
    for (const auto& unguarded : {appliance.TemporaryPath() / "cv_service4.lock", releaseLock}) {
        const std::ofstream file(unguarded);  // one whose guard is gone
        ASSERT_TRUE(file.is_open());
    }
    appliance.Kill();

    appliance.Launch();
    EXPECT_FALSE(std::filesystem::exists(releaseLock));
    for (const int service : {3, 4}) {
        EXPECT_FALSE(std::filesystem::exists(appliance.TemporaryPath() /
                                             ("cv_service" + std::to_string(service) + ".lock")));
        const auto begin = Clock::now();
        const Answer answer = appliance.Owner().AddOns("CheckEnableDone", Param("service", service));
        EXPECT_TRUE(answer.Data()["blDone"].asBool());
        EXPECT_LT(Clock::now() - begin, std::chrono::seconds(1));
    }
    ASSERT_TRUE(appliance.Owner().AddOns("Enable", Param("service", 3)).Succeeded());
    EXPECT_TRUE(hasStatus(appliance, 1));
}

TEST(HostEndTest, AModuleThatCannotBeLoadedIsAnError) {
    for (const char* module : {"/nowhere/Module.so", "/var/packages/Camvora/target/lib/libcamvora.so"}) {
        EXPECT_THROW(Appliance({"--module", module}), std::runtime_error) << module;
    }
}

}  // namespace
}  // namespace e2e
