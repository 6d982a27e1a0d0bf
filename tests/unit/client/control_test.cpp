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

const std::string kAsked = "Asking the appliance to start LD\n";
const std::string kWaiting = "Waiting for LD\n";
const std::string kSecondLook = "LD is running; looking again in two seconds\n";

std::string Missed(const std::string& words, const std::string& look = "") {
    return kAsked + kWaiting + look + "camvoractl: " + words + "\n" + kWhy;
}

FakeReplies Replies(const FakeReply& info, const FakeReply& checkDone, const FakeReply& entries) {
    return Usual(
        {{"GetInfo", info}, {"CheckEnableDone", checkDone}, {"GET /operationlog?request=r1", entries}});
}

const CommandCase kControlCases[] = {
    {"start", "start local_display", Replies(InTurn({kStopped, kInProgress, kWithProcess}), kDone, kSuccess),
     0, "LD is running since 12:03:07, pid 812\n", kAsked + kWaiting + kSecondLook},
    {"start_of_one_that_runs_already_and_is_replaced", "enable 6",
     Replies(InTurn({kStarted, kWithProcess}), kDone, InTurn({kNothing, kSuccess})), 0,
     "LD is running since 12:03:07, pid 812\n", kAsked + kWaiting + kSecondLook},
    {"start_that_another_follows", "start local_display",
     Replies(InTurn({kWithProcess, kInProgress, kStarted}), kDone, kSuccess), 0, "LD is running\n",
     kAsked + kWaiting + kSecondLook + kWaiting + kSecondLook},
    {"stop_that_nobody_waits_for", "disable local_display --no-wait", Replies(kStarted, kNotDone, kNothing),
     0, "LD is being stopped (request r1)\n", "Asking the appliance to stop LD\n",
     Asks(R"(Disable Bearer secret {"description":"stopped by camvoractl","service":6,"serviceName":"LD"})")},

    {"quiet_outcome", "restart 6 --no-wait --quiet", Usual(), 0, "LD was restarted (request r1)\n", ""},
    {"quiet_failure", "stop none --quiet", Usual(), 3, "", testing::HasSubstr("no service \"none\"")},

    {"stays_in_progress", "start 6 --timeout 5", Replies(InTurn({kStopped, kInProgress}), kDone, kNothing), 9,
     "", Missed("The action did not succeed: LD has the status \"in progress\" and is not running")},
    {"leaves_all_as_it_was", "start 6 --timeout 5", Replies(kStarted, kDone, kNothing), 9, "",
     Missed("The action did not succeed: LD has the status \"started\" and is running")},
    {"is_undone_by_another", "start 6 --timeout 5", Replies(kStopped, kDone, kSuccess), 9, "",
     Missed("The action is over, but LD has the status \"stopped\" and is not running")},
    {"lasts_longer_than_the_limit", "start 6 --timeout 5", Replies(kInProgress, kNotDone, kNothing), 8, "",
     Missed("After 5 s, LD has the status \"in progress\" and is not running; --timeout waits longer")},
    {"daemon_dies_at_once", "start 6 --timeout 5", Replies(InTurn({kWithProcess, kDead}), kDone, kSuccess), 9,
     "",
     Missed("LD was running; two seconds later it has the status \"started\" and is not running",
            kSecondLook)},
};

INSTANTIATE_TEST_SUITE_P(Control, CommandTest, testing::ValuesIn(kControlCases), NameOf);

}  // namespace
