// The operation log, once and as it grows.
#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace {

std::string Entry(const std::string& id, const std::string& event, const std::string& texts) {
    return R"({"event":)" + event + R"(,"id":)" + id + R"(,"number":0,"request":"q)" + id + R"(","texts":)" +
           texts + R"(,"time":"2026-03-01T12:03:07.123Z","who":"client"})";
}

const std::string kStarted = Entry("4", "321913013", R"(["Display","by hand",""])");
const std::string kOther = Entry("5", "7", R"(["x\u001b[31m","",""])");

FakeReply Entries(const std::string& entries) {
    return Success(R"({"entries":[)" + entries + "]}");
}

TEST(OperationLogTest, IsATableForPeopleAndAsItIsForPrograms) {
    const FakeAppliance appliance({{"GET /operationlog", Entries(kStarted + "," + kOther)}});
    EXPECT_EQ(
        "Time                 Event           Text              Who     Request\n"
        "2026-03-01 12:03:07  Add-on service  Display: by hand  client  q4\n"
        "2026-03-01 12:03:07  Event 7         x\\x1B[31m         client  q5\n",
        appliance.Run("log").out);
    const std::string whole = appliance.Run("log --json").out;
    EXPECT_NE(std::string::npos, whole.find(kStarted)) << whole;
}

TEST(OperationLogTest, GoesOnWhereTheConnectionBroke) {
    FakeAppliance appliance(
        {{"GET /operationlog", Entries(kStarted)},
         {"GET /operationlog?after=4",
          InTurn({Entries(""), Error(503, R"({"code":1008,"data":null})"), Entries(kOther)})},
         {"GET /operationlog?after=5", Entries("")}});
    const Program run = appliance.Start("log --follow --json");
    appliance.AwaitRequests(6);  // one of them for the log of the failure
    kill(run.Pid(), SIGINT);
    const Outcome outcome = run.Wait();
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ(kStarted + "\n", outcome.out.substr(0, kStarted.size() + 1));
    EXPECT_EQ(2, std::count(outcome.out.begin(), outcome.out.end(), '\n')) << outcome.out;
}

}  // namespace
