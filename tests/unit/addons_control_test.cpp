// "Enable", "Disable", "Restart" and "CheckEnableDone".
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const Steps kFailed = {"SetError 400 null"};
const Steps kDone = {"SetSuccess null"};

// One action of a service under its lock, in a process at `depth` that has forked `child` - 1 times before.
Steps Action(const std::string& service, const std::string& action, const std::string& depth,
             const Steps& announced, int child = 1, const Steps& strategy = {}) {
    const std::string file = "/tmp/cv_name" + service;
    const Steps begin = {"BeginCriticalSection " + file + ".lock 3000", "fork",
                         "> PLIBCProcPidFileCreate " + file + ".pid",
                         "> ChangeServiceStatus " + service + " 4"};
    const Steps end = {"> ChangeServiceStatus " + service + " " + action, "> _exit 0",
                       "waitpid child" + std::to_string(child), "RemoveFileIfExist " + file + ".pid"};
    Steps steps = begin + strategy + end + announced +
                  Steps{"EndCriticalSection 0", "RemoveFileIfExist " + file + ".lock"};
    for (std::string& step : steps) {
        step.insert(0, depth);
    }
    return steps;
}

// That of "Enable" or "Disable", in a process of its own.
Steps Detached(const std::string& action) {
    const Steps announced = {"CVClientNotify::Notify 24 1 " + action + " 0",
                             "CVLog 321913013 0 'Device Pack' 'by hand' ''"};
    return Steps{"> setsid"} + Action("1", action, "> ", announced) + Steps{"> _exit 0"};
}

struct EnableCase {
    const char* name;
    const char* method;
    const char* answers;
    Steps steps;  // after the fork
};

const EnableCase kEnableCases[] = {
    {"enable", "Enable", "{}", Detached("1") + kDone},
    {"disable", "Disable", "{}", Detached("0") + kDone},
    {"lock_not_obtained",
     "Enable",
     R"({"BeginCriticalSection":-1})",
     {"> setsid", "> BeginCriticalSection /tmp/cv_name1.lock 3000",
      R"(> CVPrintf 0 null null addons HandleEnable 'Failed to execute service control.\n')", "> _exit 0",
      kDone[0]}},
    {"no_process",
     "Enable",
     R"({"fork":11})",
     {R"(CVPrintf 0 null null addons HandleEnable 'Failed to fork child\n')", kFailed[0]}},
};

using Enable = TableTest<EnableCase>;

TEST_P(Enable, AnswersAndActsInADetachedChild) {
    fake::AnswerEach(GetParam().answers);
    ExpectCalls(fake::Authorized(GetParam().method,
                                 R"({"service":1,"serviceName":"Device Pack","description":"by hand"})"),
                Steps{"GetParam service 0", R"(GetParam serviceName "")", R"(GetParam description "")",
                      "GetAPIMethod", "PLIBCProcFork", "fork"} +
                    GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(, Enable, testing::ValuesIn(kEnableCases), CaseName<EnableCase>);

Steps RestartFailure(const std::string& text) {
    return {"CVPrintf 0 null null addons HandleRestart '" + text + "\\n'", kFailed[0]};
}

// The lock that a start or stop fails at, which keeps the journal short.
const Steps kLockRefused = {"BeginCriticalSection /tmp/cv_name4.lock 3000"};

const Steps kResetDisplay = {
    "GetDaemonInfo 11",
    "GetDaemonInfo 12",
    "ChangeServiceStatus 6 0",
    "remove /tmp/daemon11.pid",
    "remove /tmp/daemon12.pid",
    "remove /var/packages/Camvora/target/@CVData/preference/local_display_login/status"};

struct RestartCase {
    const char* name;
    const char* params;
    std::vector<int> locks;    // one answer after the other
    std::vector<int> daemons;  // the same, to the questions for them
    Steps steps;               // after the read of "service"
};

const RestartCase kRestartCases[] = {
    {"without_service", "{}", {}, {}, Action("0", "0", "", {}) + Action("0", "1", "", {}, 2) + kDone},
    {"stop_fails",
     R"({"service":4})",
     {-1},
     {},
     kLockRefused + RestartFailure("Failed to stop service control.")},
    {"start_fails",
     R"({"service":4})",
     {0, -1},
     {},
     Action("4", "0", "", {}) + kLockRefused + RestartFailure("Failed to start service control.")},
    {"display",
     R"({"service":6})",
     {},
     {},
     kResetDisplay + Action("6", "1", "", {}, 1, {"> DaemonCtrl::Run 11"}) + kDone},
    {"display_helper_unknown",
     R"({"service":6})",
     {},
     {0, -1},
     Steps{"GetDaemonInfo 11", "GetDaemonInfo 12"} + RestartFailure("Failed to get info of daemon type[12]")},
};

using Restart = TableTest<RestartCase>;

TEST_P(Restart, StopsThenStarts) {
    for (const int lock : GetParam().locks) {
        fake::AnswerOnce("BeginCriticalSection", lock);
    }
    for (const int daemon : GetParam().daemons) {
        fake::AnswerOnce("GetDaemonInfo", daemon);
    }
    ExpectCalls(fake::Authorized("Restart", GetParam().params),
                Steps{"GetParam service 0"} + GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(, Restart, testing::ValuesIn(kRestartCases), CaseName<RestartCase>);

// The parameter: how often the lock file is there.
using CheckEnableDone = TableTest<int>;

TEST_P(CheckEnableDone, LooksEveryTwoSecondsForTwenty) {
    const std::string look = "IsFileExist /tmp/cv_name3.lock";
    Steps steps = {"GetParam service 0"};
    for (int i = 0; i < GetParam(); ++i) {
        fake::AnswerOnce("IsFileExist", true);
        steps = steps + Steps{look, "sleep 2"};
    }
    const Steps end = GetParam() < 10 ? Steps{look, R"(SetSuccess {"blDone":true})"}
                                      : Steps{R"(SetSuccess {"blDone":false})"};
    ExpectCalls(fake::Authorized("CheckEnableDone", R"({"service":3})"), steps + end);
}

INSTANTIATE_TEST_SUITE_P(, CheckEnableDone, testing::Values(0, 2, 9, 10));

// A clock that is set back must not make the request wait for ever.
TEST(CheckEnableDoneClock, EndsWhenTheClockJumpsBack) {
    const fake::Session session;
    fake::Answer("IsFileExist", true);
    fake::Answer("sleep", -3600);
    EXPECT_EQ(R"(SetSuccess {"blDone":false})",
              fake::Serve(Process, fake::Authorized("CheckEnableDone", R"({"service":3})")));
}

}  // namespace
