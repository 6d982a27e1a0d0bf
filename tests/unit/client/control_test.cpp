// Starting and stopping: what is asked, how long is waited, and what is made of what was seen.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

const FakeReply kNull = Success("null");
const FakeReply kListing =
    Success(R"({"list":[{"service":6,"info":{"shortName":"display","name":"Display"}}]})");

const FakeReply kStopped = Success(R"({"status":0,"statusName":"stopped","blRunning":false})");
const FakeReply kInProgress = Success(R"({"status":4,"statusName":"in progress","blRunning":false})");
const FakeReply kStarted = Success(R"({"status":1,"statusName":"started","blRunning":true})");
const FakeReply kWithProcess = Success(
    R"({"status":1,"statusName":"started","blRunning":true,"pid":812,"since":"2026-03-01T12:03:07.123Z"})");
const FakeReply kDead = Success(R"({"status":1,"statusName":"started","blRunning":false})");

const FakeReply kDone = Success(R"({"blDone":true})");
const FakeReply kNotDone = Success(R"({"blDone":false})");
const FakeReply kLogged =
    Success(R"({"lines":[{"time":"T","source":"s","line":9,"function":"F","text":"why"}]})");

const std::string kAsked = "Asking the appliance to start Display\n";
const std::string kWaiting = "Waiting for Display\n";
const std::string kSecondLook = "Display is running; looking again in two seconds\n";
const std::string kReason = "The request was r1\nThe appliance logged:\nT  s:9  F  why\n";

struct ControlCase {
    const char* name;
    const char* line;
    std::map<std::string, FakeReply> replies;
    int status;
    std::string out;
    std::string err;
};

const std::vector<ControlCase> kControlCases = {
    {"start",
     "start display",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, InTurn({kStopped, kInProgress, kWithProcess})}},
     0,
     "Display is running since 12:03:07, pid 812\n",
     kAsked + kWaiting + kSecondLook},
    {"start_by_number_of_a_service_without_a_process",
     "enable 6",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, InTurn({kStopped, kStarted})}},
     0,
     "Display is running\n",
     kAsked + kWaiting + kSecondLook},
    {"start_of_one_that_runs_already_and_is_replaced",
     "start display",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, InTurn({kStarted, kInProgress, kWithProcess})}},
     0,
     "Display is running since 12:03:07, pid 812\n",
     kAsked + kWaiting + kSecondLook + kWaiting + kSecondLook},
    {"start_that_stays_in_progress",
     "start display",
     {{kList, kListing},
      {kEnable, kNull},
      {kGetInfo, InTurn({kStopped, kInProgress})},
      {kCheckDone, kDone},
      {kLog, kLogged}},
     9,
     "",
     kAsked + kWaiting +
         "camvoractl: The action is over, but Display has the status \"in progress\" and is not running\n" +
         kReason},
    {"start_that_never_begins",
     "start display",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, kStopped}, {kCheckDone, kDone}, {kLog, kLogged}},
     9,
     "",
     kAsked + kWaiting +
         "camvoractl: The action is over, but Display has the status \"stopped\" and is not running\n" +
         kReason},
    {"start_that_lasts_longer_than_the_limit",
     "start display --timeout 2",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, kInProgress}, {kCheckDone, kNotDone}, {kLog, kLogged}},
     8,
     "",
     kAsked + kWaiting +
         "camvoractl: After 2 s, Display has the status \"in progress\" and is not running; --timeout waits "
         "longer\n" +
         kReason},
    {"start_whose_daemon_dies_at_once",
     "start display",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, InTurn({kWithProcess, kDead})}, {kLog, kLogged}},
     9,
     "",
     kAsked + kWaiting + kSecondLook +
         "camvoractl: Display was running; two seconds later it has the status \"started\" and is "
         "not "
         "running\n" +
         kReason},
    {"start_for_programs",
     "start display --json",
     {{kList, kListing}, {kEnable, kNull}, {kGetInfo, kStarted}},
     0,
     "{\"blRunning\":true,\"status\":1,\"statusName\":\"started\"}\n",
     ""},
    {"start_that_is_not_waited_for",
     "start display --no-wait",
     {{kList, kListing}, {kEnable, kNull}},
     0,
     "Display is being started (request r1)\n",
     kAsked},
    {"start_that_is_not_waited_for_by_programs",
     "start display --no-wait --json",
     {{kList, kListing}, {kEnable, kNull}},
     0,
     "{\"request\":\"r1\"}\n",
     ""},
    {"stop",
     "stop display",
     {{kList, kListing}, {kDisable, kNull}, {kGetInfo, InTurn({kStarted, kInProgress, kStopped})}},
     0,
     "Display is stopped\n",
     "Asking the appliance to stop Display\n" + kWaiting},
    {"restart",
     "restart display",
     {{kList, kListing}, {kRestart, kNull}, {kGetInfo, kWithProcess}},
     0,
     "Display is running since 12:03:07, pid 812\n",
     "Asking the appliance to restart Display\n" + kWaiting + kSecondLook},
    {"restart_that_fails",
     "restart display",
     {{kList, kListing}, {kRestart, Error(200, R"({"code":400,"data":null})")}, {kLog, kLogged}},
     1,
     "",
     "Asking the appliance to restart Display\n"
     "camvoractl: Restart failed (error 400): the appliance could not do it\n" +
         kReason},
    {"name_of_no_service",
     "stop displai",
     {{kList, kListing}},
     3,
     "",
     "camvoractl: There is no service \"displai\". Did you mean \"display\"?\n"},
    {"number_of_no_service",
     "start 7",
     {{kList, kListing}},
     3,
     "",
     "camvoractl: There is no service 7. \"camvoractl list\" shows all\n"},
};

class ControlCommandTest : public testing::TestWithParam<ControlCase> {};

TEST_P(ControlCommandTest, SaysWhatWasSeen) {
    const FakeAppliance appliance(GetParam().replies);
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ(GetParam().out, outcome.out);
    EXPECT_EQ(GetParam().err, outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ControlCommandTest, testing::ValuesIn(kControlCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ControlCommandRequestTest, TellsTheOperationLogWhoItWas) {
    FakeAppliance appliance({{kList, kListing}, {kDisable, kNull}});
    appliance.Run("disable display --no-wait");
    ASSERT_EQ(2U, appliance.Host().Requests().size());
    EXPECT_EQ(kDisable + std::string(" Bearer secret ") +
                  R"({"description":"stopped by camvoractl","service":6,"serviceName":"Display"})",
              appliance.Host().Requests()[1]);
}

}  // namespace
