// Starting and stopping: what is asked, how long is waited, and what is made of what was seen.
#include "commandcase.h"

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

std::string Missed(const std::string& words, const std::string& look = "") {
    return kAsked + kWaiting + look + "camvoractl: " + words +
           "\nThe request was r1\nThe appliance logged:\nT  s:9  F  why\n";
}

// One with the service 6, which does what it is asked.
FakeReplies Replies(const FakeReply& info, const FakeReply& checkDone, const FakeReply& entries) {
    return {
        {"List", Success(R"({"list":[{"service":6,"info":{"shortName":"display","name":"Display"}}]})")},
        {"GetInfo", info},
        {"CheckEnableDone", checkDone},
        {"GET /operationlog?request=r1", entries},
        {kLog, Success(R"({"lines":[{"time":"T","source":"s","line":9,"function":"F","text":"why"}]})")},
    };
}

const CommandCase kControlCases[] = {
    {"start", "start display", Replies(InTurn({kStopped, kInProgress, kWithProcess}), kDone, kSuccess), 0,
     "Display is running since 12:03:07, pid 812\n", kAsked + kWaiting + kSecondLook},
    {"start_of_one_that_runs_already_and_is_replaced", "enable 6",
     Replies(InTurn({kStarted, kWithProcess}), kDone, InTurn({kNothing, kSuccess})), 0,
     "Display is running since 12:03:07, pid 812\n", kAsked + kWaiting + kSecondLook},
    {"start_that_another_follows", "start display",
     Replies(InTurn({kWithProcess, kInProgress, kStarted}), kDone, kSuccess), 0, "Display is running\n",
     kAsked + kWaiting + kSecondLook + kWaiting + kSecondLook},
    {"stop_that_nobody_waits_for", "disable display --no-wait", Replies(kStarted, kNotDone, kNothing), 0,
     "Display is being stopped (request r1)\n", "Asking the appliance to stop Display\n"},

    {"stays_in_progress", "start 6 --timeout 5", Replies(InTurn({kStopped, kInProgress}), kDone, kNothing), 9,
     "", Missed("The action did not succeed: Display has the status \"in progress\" and is not running")},
    {"leaves_all_as_it_was", "start 6 --timeout 5", Replies(kStarted, kDone, kNothing), 9, "",
     Missed("The action did not succeed: Display has the status \"started\" and is running")},
    {"is_undone_by_another", "start 6 --timeout 5", Replies(kStopped, kDone, kSuccess), 9, "",
     Missed("The action is over, but Display has the status \"stopped\" and is not running")},
    {"lasts_longer_than_the_limit", "start 6 --timeout 5", Replies(kInProgress, kNotDone, kNothing), 8, "",
     Missed("After 5 s, Display has the status \"in progress\" and is not running; --timeout waits longer")},
    {"daemon_dies_at_once", "start 6 --timeout 5", Replies(InTurn({kWithProcess, kDead}), kDone, kSuccess), 9,
     "",
     Missed("Display was running; two seconds later it has the status \"started\" and is not running",
            kSecondLook)},
};

INSTANTIATE_TEST_SUITE_P(Control, CommandTest, testing::ValuesIn(kControlCases), NameOf);

}  // namespace
