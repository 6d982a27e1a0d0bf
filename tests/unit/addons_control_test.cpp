// "Enable", "Disable", "Restart" and "CheckEnableDone".
#include "fake/journal.h"
#include "fake/processes.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {

using Steps = std::vector<std::string>;

const Steps kAdmission = fake::Admission();
const Steps kFailed = {"SetError 400 null"};
const Steps kDone = {"SetSuccess null"};

Steps Join(const std::vector<Steps>& parts) {
    Steps all;
    for (const Steps& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// One action of a service under its lock, in a process at `depth` that has forked `child` - 1 times before.
Steps Action(const std::string& service, const std::string& action, const std::string& depth,
             const Steps& announced, int child = 1, const Steps& strategy = {}) {
    const std::string file = "/tmp/cv_name" + service;
    const Steps begin = {"GetServiceStr " + service,
                         "BeginCriticalSection " + file + ".lock 3000",
                         "GetServiceStr " + service,
                         "fork",
                         "> PLIBCProcPidFileCreate " + file + ".pid",
                         "> ChangeServiceStatus " + service + " 4"};
    const Steps end = {"> ChangeServiceStatus " + service + " " + action, "> _exit 0",
                       "waitpid child" + std::to_string(child), "RemoveFileIfExist " + file + ".pid"};
    Steps steps = Join(
        {begin, strategy, end, announced, {"EndCriticalSection 0", "RemoveFileIfExist " + file + ".lock"}});
    for (std::string& step : steps) {
        step.insert(0, depth);
    }
    return steps;
}

struct EnableCase {
    const char* name;
    const char* method;
    const char* action;
};

const EnableCase kEnableCases[] = {
    {"enable", "Enable", "1"},
    {"disable", "Disable", "0"},
};

const char kEnableParams[] = R"({"service":1,"serviceName":"Device Pack","description":"by hand"})";
const Steps kReadEnable = {"GetParam service 0",
                           R"(GetParam serviceName "")",
                           R"(GetParam description "")",
                           "GetAPIMethod",
                           "PLIBCProcFork",
                           "fork"};

class Enable : public testing::TestWithParam<EnableCase> {
    fake::Session session_;
};

TEST_P(Enable, AnswersAndActsInADetachedChild) {
    const std::string action = GetParam().action;
    const fake::DetachedJournal journal =
        fake::ServeAndReap(Process, fake::Authorized(GetParam().method, kEnableParams));
    EXPECT_EQ(fake::Lines(Join({kAdmission, kReadEnable, kDone})), journal.request);
    const Steps announced = {"CVClientNotify::Notify 24 1 " + action + " 0",
                             "CVLog 321913013 0 'Device Pack' 'by hand' ''"};
    EXPECT_EQ(fake::Lines(Join({{"> setsid"}, Action("1", action, "> ", announced), {"> _exit 0"}})),
              journal.child);
}

INSTANTIATE_TEST_SUITE_P(, Enable, testing::ValuesIn(kEnableCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(EnableFailure, LogsAFailedActionAndEndsWell) {
    const fake::Session session;
    fake::Answer("BeginCriticalSection", -1);
    const fake::DetachedJournal journal =
        fake::ServeAndReap(Process, fake::Authorized("Enable", kEnableParams));
    EXPECT_EQ(fake::Lines(Join({kAdmission, kReadEnable, kDone})), journal.request);
    EXPECT_EQ(
        fake::Lines({"> setsid", "> GetServiceStr 1", "> BeginCriticalSection /tmp/cv_name1.lock 3000",
                     R"(> CVPrintf 0 null null addons HandleEnable 'Failed to execute service control.\n')",
                     "> _exit 0"}),
        journal.child);
}

TEST(EnableFailure, FailsWhenItCannotFork) {
    const fake::Session session;
    fake::FailOnce("fork", EAGAIN);
    fake::Serve(Process, fake::Authorized("Enable", kEnableParams));
    EXPECT_EQ(fake::Lines(Join({kAdmission,
                                kReadEnable,
                                {R"(CVPrintf 0 null null addons HandleEnable 'Failed to fork child\n')"},
                                kFailed})),
              fake::Journal());
}

Steps RestartFailure(const std::string& text) {
    return {"CVPrintf 0 null null addons HandleRestart '" + text + "\\n'"};
}

// The lock that a start or stop fails at, which keeps the journal short.
Steps LockRefused(const std::string& service) {
    return {"GetServiceStr " + service, "BeginCriticalSection /tmp/cv_name" + service + ".lock 3000"};
}

const Steps kResetDisplay = {
    "GetDaemonInfo 11",
    "GetDaemonInfo 12",
    "ChangeServiceStatus 6 0",
    "remove /tmp/daemon11.pid",
    "remove /tmp/daemon12.pid",
    "remove /var/packages/Camvora/target/@CVData/preference/local_display_login/status"};

void RefuseLock() {
    fake::Answer("BeginCriticalSection", -1);
}

void RefuseSecondLock() {
    fake::AnswerOnce("BeginCriticalSection", 0);
    fake::Answer("BeginCriticalSection", -1);
}

void KnowNoDaemon() {
    fake::Answer("GetDaemonInfo", -1);
}

void KnowOneDaemon() {
    fake::AnswerOnce("GetDaemonInfo", 0);
    fake::Answer("GetDaemonInfo", -1);
}

struct RestartCase {
    const char* name;
    const char* params;
    void (*script)();
    Steps steps;  // after the read of "service"
};

const RestartCase kRestartCases[] = {
    {"without_service", "{}", nullptr, Join({Action("0", "0", "", {}), Action("0", "1", "", {}, 2), kDone})},
    {"stop_fails", R"({"service":4})", RefuseLock,
     Join({LockRefused("4"), RestartFailure("Failed to stop service control."), kFailed})},
    {"start_fails", R"({"service":4})", RefuseSecondLock,
     Join({Action("4", "0", "", {}), LockRefused("4"), RestartFailure("Failed to start service control."),
           kFailed})},
    {"display", R"({"service":6})", nullptr,
     Join({kResetDisplay, Action("6", "1", "", {}, 1, {"> DaemonCtrl::Run 11"}), kDone})},
    {"display_start_fails", R"({"service":6})", RefuseLock,
     Join({kResetDisplay, LockRefused("6"), RestartFailure("Failed to start service control."), kFailed})},
    {"display_daemon_unknown", R"({"service":6})", KnowNoDaemon,
     Join({{"GetDaemonInfo 11"}, RestartFailure("Failed to get info of daemon type[11]"), kFailed})},
    {"display_helper_unknown", R"({"service":6})", KnowOneDaemon,
     Join({{"GetDaemonInfo 11", "GetDaemonInfo 12"},
           RestartFailure("Failed to get info of daemon type[12]"),
           kFailed})},
};

class Restart : public testing::TestWithParam<RestartCase> {
    fake::Session session_;
};

TEST_P(Restart, StopsThenStarts) {
    if (GetParam().script != nullptr) {
        GetParam().script();
    }
    fake::Serve(Process, fake::Authorized("Restart", GetParam().params));
    EXPECT_EQ(fake::Lines(Join({kAdmission, {"GetParam service 0"}, GetParam().steps})), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Restart, testing::ValuesIn(kRestartCases),
                         [](const auto& row) { return std::string(row.param.name); });

// One answer to "is the lock file there" after the other; the last one holds.
struct CheckCase {
    const char* name;
    std::vector<bool> locked;
    int sleeps;
    const char* answer;
};

const CheckCase kCheckCases[] = {
    {"idle", {false}, 0, R"(SetSuccess {"blDone":true})"},
    {"done_while_waiting", {true, true, false}, 2, R"(SetSuccess {"blDone":true})"},
    {"done_at_the_last_look",
     {true, true, true, true, true, true, true, true, true, false},
     9,
     R"(SetSuccess {"blDone":true})"},
    {"not_done", {true}, 10, R"(SetSuccess {"blDone":false})"},
};

class CheckEnableDone : public testing::TestWithParam<CheckCase> {
    fake::Session session_;
};

TEST_P(CheckEnableDone, LooksEveryTwoSecondsForTwenty) {
    fake::SetClock(1'700'000'000);
    for (const bool locked : GetParam().locked) {
        fake::AnswerOnce("IsFileExist", locked);
    }
    fake::Answer("IsFileExist", GetParam().locked.back());
    EXPECT_EQ(GetParam().answer,
              fake::Serve(Process, fake::Authorized("CheckEnableDone", R"({"service":3})")));
    const Steps look = {"GetServiceStr 3", "IsFileExist /tmp/cv_name3.lock"};
    Steps steps = Join({kAdmission, {"GetParam service 0"}});
    for (int i = 0; i < GetParam().sleeps; ++i) {
        steps = Join({steps, look, {"sleep 2"}});
    }
    const bool done = !GetParam().locked.back();
    EXPECT_EQ(fake::Lines(Join({steps, done ? look : Steps{}, {GetParam().answer}})), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, CheckEnableDone, testing::ValuesIn(kCheckCases),
                         [](const auto& row) { return std::string(row.param.name); });

// A clock that is set back must not make the request wait for ever.
TEST(CheckEnableDoneClock, EndsWhenTheClockJumpsBack) {
    const fake::Session session;
    fake::SetClock(1'700'000'000);
    fake::Answer("IsFileExist", true);
    fake::Answer("sleep", -3600);
    EXPECT_EQ(R"(SetSuccess {"blDone":false})",
              fake::Serve(Process, fake::Authorized("CheckEnableDone", R"({"service":3})")));
}

}  // namespace
