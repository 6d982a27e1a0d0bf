// The host's processes: they are started again when they fail, and none is left when the host stops.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <future>
#include <memory>
#include <stdexcept>

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;

std::future<Answer> CallInBackground(const Appliance& appliance, const std::string& method,
                                     const Json::Value& params = Json::Value(Json::objectValue)) {
    EXPECT_TRUE(appliance.WaitForRequests(0));
    auto call = std::async(std::launch::async,
                           [client = std::make_shared<HttpCalls>(appliance.Url(), appliance.Token()), method,
                            params] { return client->Test(method, params); });
    EXPECT_TRUE(appliance.WaitForRequests(1));
    return call;
}

TEST(LifecycleTest, TheRequestServerIsStartedAgain) {
    Appliance appliance(Appliance::WithTestModule());
    HttpCalls owner = appliance.Owner();
    ASSERT_EQ(200, owner.Get("/health").status);
    auto running = CallInBackground(appliance, "Hang");
    const pid_t killed = appliance.RequestServer();
    kill(killed, SIGKILL);
    const Answer answer = running.get();
    EXPECT_EQ(503, answer.status);
    EXPECT_EQ(1015, answer.Code());
    EXPECT_TRUE(WaitUntil([&] { return owner.Get("/health").status == 200; }));
    EXPECT_TRUE(owner.Test("Echo").Succeeded());
    EXPECT_NE(killed, appliance.RequestServer());
}

TEST(LifecycleTest, HealthFailsWhileRequestsAreNotServed) {
    Appliance appliance(Appliance::WithTestModule());
    HttpCalls owner = appliance.Owner();
    ASSERT_EQ(200, owner.Get("/health").status);
    const pid_t requestServer = appliance.RequestServer();
    kill(requestServer, SIGSTOP);
    EXPECT_EQ(503, owner.Get("/health").status);
    kill(requestServer, SIGCONT);
    EXPECT_EQ(200, owner.Get("/health").status);
}

TEST(LifecycleTest, TheHttpServerIsStartedAgainAtTheSameAddress) {
    Appliance appliance(Appliance::WithTestModule());
    ASSERT_EQ(200, appliance.Owner().Get("/health").status);
    kill(appliance.HttpProcess(), SIGKILL);
    EXPECT_TRUE(WaitUntil([&] { return appliance.Owner().Get("/health").status == 200; }));
}

TEST(LifecycleTest, ItGivesUpWhenAProcessKeepsFailing) {
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

TEST(LifecycleTest, StopLetsRequestsFinish) {
    Appliance appliance(Appliance::WithTestModule());
    auto running = CallInBackground(appliance, "Sleep", Param("ms", 1000));
    appliance.Stop();
    EXPECT_EQ(200, running.get().status);
}

TEST(LifecycleTest, StopEndsBusyConnections) {
    Appliance appliance(Appliance::WithTestModule());
    RawConnection connection(appliance.Url());
    for (int i = 0; i < 50; ++i) {
        connection.Send(PostText("Sleep", R"({"ms":500})"));
    }
    EXPECT_NE("", connection.ReceiveUntil("}"));
    const auto begin = Clock::now();
    appliance.Stop();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5));
}

TEST(LifecycleTest, StopDoesNotWaitForEver) {
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

TEST(LifecycleTest, AModuleThatCannotBeLoadedIsAnError) {
    EXPECT_THROW(Appliance({"--module", "/nowhere/Module.so"}), std::runtime_error);
    EXPECT_THROW(Appliance({"--module", "/var/packages/Camvora/target/lib/libcamvora.so"}),
                 std::runtime_error);
}

}  // namespace
}  // namespace e2e
