// Starting and stopping: what is asked, how long is waited, and what is made of what was seen.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

const FakeReply kStopped = Success(R"({"status":0,"statusName":"stopped","blRunning":false})");
const FakeReply kInProgress = Success(R"({"status":4,"statusName":"in progress","blRunning":false})");
const FakeReply kStarted = Success(R"({"status":1,"statusName":"started","blRunning":true})");
const FakeReply kWithProcess = Success(
    R"({"status":1,"statusName":"started","blRunning":true,"pid":812,"since":"2026-03-01T12:03:07.123Z"})");
const FakeReply kDead = Success(R"({"status":1,"statusName":"started","blRunning":false})");

const FakeReply kDone = Success(R"({"blDone":true})");
const FakeReply kNotDone = Success(R"({"blDone":false})");

// What the operation log says of the request.
const FakeReply kNothing = Success(R"({"entries":[]})");
const FakeReply kSuccess = Success(R"({"entries":[{"id":9}]})");

const std::string kAsked = "Asking the appliance to start Display\n";
const std::string kWaiting = "Waiting for Display\n";
const std::string kSecondLook = "Display is running; looking again in two seconds\n";
const std::string kReason = "The request was r1\nThe appliance logged:\nT  s:9  F  why\n";

// One with the service 6, which does what it is asked.
FakeReplies Replies(const FakeReply& info, const FakeReply& checkDone, const FakeReply& entries) {
    return {
        {"List", Success(R"({"list":[{"service":6,"info":{"shortName":"display","name":"Display"}}]})")},
        {"Enable", Success("null")},
        {"Disable", Success("null")},
        {"Restart", Success("null")},
        {"GetInfo", info},
        {"CheckEnableDone", checkDone},
        {"GET /operationlog?request=r1", entries},
        {kLog, Success(R"({"lines":[{"time":"T","source":"s","line":9,"function":"F","text":"why"}]})")},
    };
}

struct ReachedCase {
    const char* name;
    const char* line;
    FakeReply info;
    FakeReply entries;
    std::string out;
    std::string err;
};

const ReachedCase kReachedCases[] = {
    {"start", "start display", InTurn({kStopped, kInProgress, kWithProcess}), kSuccess,
     "Display is running since 12:03:07, pid 812\n", kAsked + kWaiting + kSecondLook},
    {"start_of_one_that_runs_already_and_is_replaced", "enable 6", InTurn({kStarted, kWithProcess}),
     InTurn({kNothing, kSuccess}), "Display is running since 12:03:07, pid 812\n",
     kAsked + kWaiting + kSecondLook},
    {"start_that_another_follows", "start display", InTurn({kWithProcess, kInProgress, kStarted}), kSuccess,
     "Display is running\n", kAsked + kWaiting + kSecondLook + kWaiting + kSecondLook},
    {"start_for_programs", "start display --json", kStarted, kSuccess,
     "{\"blRunning\":true,\"status\":1,\"statusName\":\"started\"}\n", ""},
    {"start_that_programs_do_not_wait_for", "start display --no-wait --json", kStopped, kNothing,
     "{\"request\":\"r1\"}\n", ""},
    {"stop", "stop display", InTurn({kStarted, kInProgress, kStopped}), kSuccess, "Display is stopped\n",
     "Asking the appliance to stop Display\n" + kWaiting},
    {"restart", "restart display", kWithProcess, kNothing, "Display is running since 12:03:07, pid 812\n",
     "Asking the appliance to restart Display\n" + kWaiting + kSecondLook},
};

class ControlReachedTest : public testing::TestWithParam<ReachedCase> {};

TEST_P(ControlReachedTest, SaysWhatWasSeen) {
    const FakeAppliance appliance(Replies(GetParam().info, kDone, GetParam().entries));
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(GetParam().out, outcome.out);
    EXPECT_EQ(GetParam().err, outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ControlReachedTest, testing::ValuesIn(kReachedCases),
                         [](const auto& c) { return std::string(c.param.name); });

struct MissedCase {
    const char* name;
    FakeReply info;
    FakeReply checkDone;
    FakeReply entries;
    int status;
    std::string err;  // between the first steps and the log
};

const MissedCase kMissedCases[] = {
    {"stays_in_progress", InTurn({kStopped, kInProgress}), kDone, kNothing, 9,
     "camvoractl: The action did not succeed: Display has the status \"in progress\" and is not running\n"},
    {"leaves_all_as_it_was", kStarted, kDone, kNothing, 9,
     "camvoractl: The action did not succeed: Display has the status \"started\" and is running\n"},
    {"is_undone_by_another", kStopped, kDone, kSuccess, 9,
     "camvoractl: The action is over, but Display has the status \"stopped\" and is not running\n"},
    {"lasts_longer_than_the_limit", kInProgress, kNotDone, kNothing, 8,
     "camvoractl: After 5 s, Display has the status \"in progress\" and is not running; "
     "--timeout waits longer\n"},
    {"daemon_dies_at_once", InTurn({kWithProcess, kDead}), kDone, kSuccess, 9,
     kSecondLook + "camvoractl: Display was running; two seconds later it has the status \"started\" and is "
                   "not running\n"},
};

class ControlMissedTest : public testing::TestWithParam<MissedCase> {};

TEST_P(ControlMissedTest, SaysWhatIsWrongAndWhy) {
    const FakeAppliance appliance(Replies(GetParam().info, GetParam().checkDone, GetParam().entries));
    const Outcome outcome = appliance.Run("start display --timeout 5");
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ(kAsked + kWaiting + GetParam().err + kReason, outcome.err);
}

INSTANTIATE_TEST_SUITE_P(All, ControlMissedTest, testing::ValuesIn(kMissedCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(ControlRequestTest, TellsTheOperationLogWhoItWas) {
    FakeAppliance appliance(Replies(kStopped, kDone, kNothing));
    EXPECT_EQ("Display is being stopped (request r1)\n", appliance.Run("disable display --no-wait").out);
    ASSERT_EQ(2U, appliance.Requests().size());
    EXPECT_EQ(R"(Disable Bearer secret )"
              R"({"description":"stopped by camvoractl","service":6,"serviceName":"Display"})",
              appliance.Requests()[1]);
}

}  // namespace
