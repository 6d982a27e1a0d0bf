// The add-on service of a request: its way of control, and control actions under its lock.
#include "addons/addonsservice.h"

#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>

namespace {

// What a start does tells which way of control the service has.
struct ControllerCase {
    const char* name;
    int service;
    Steps steps;  // of the action process, between the two status changes
};

const ControllerCase kControllerCases[] = {
    {"none", 0, {}},
    {"device_pack", 1, {}},
    {"cms",
     2,
     {"> WebUIOptions", "> WebUIOptions::SetOption 0 true", "> WebUIOptions::Apply", "> ~WebUIOptions"}},
    {"service3", 3, {"> DaemonCtrl::Run 1"}},
    {"service4", 4, {}},
    {"service5", 5, {"> DaemonCtrl::Run 6"}},
    {"local_display", 6, {"> DaemonCtrl::Run 11"}},
    {"above_all", 7, {}},
    {"below_all", -1, {}},
};

using Controller = TableTest<ControllerCase>;

TEST_P(Controller, IsThatOfTheService) {
    AddOns addons(ADDON_SERVICE_5);
    addons.InitService(static_cast<ADDON_SERVICE>(GetParam().service));
    EXPECT_EQ(0, addons.RunActionControl(CONTROL_ACTION_START));
    const std::string status = "> ChangeServiceStatus " + std::to_string(GetParam().service);
    const Steps steps = Steps{status + " 4"} + GetParam().steps + Steps{status + " 1"};
    EXPECT_NE(std::string::npos, fake::Journal().find(fake::Lines(steps))) << fake::Journal();
}

INSTANTIATE_TEST_SUITE_P(, Controller, testing::ValuesIn(kControllerCases), CaseName<ControllerCase>);

const Steps kTakeLock = {"BeginCriticalSection /tmp/cv_name6.lock 3000"};
const Steps kBegin = kTakeLock + Steps{"fork", "> PLIBCProcPidFileCreate /tmp/cv_name6.pid"};
const Steps kReaped = {"waitpid child1"};
const Steps kLeave = {"RemoveFileIfExist /tmp/cv_name6.pid", "EndCriticalSection 0",
                      "RemoveFileIfExist /tmp/cv_name6.lock"};
const Steps kFailedAndLeave = {
    kLeave[0], R"(CVPrintf 0 null null addonsservice ExecServiceControl 'Failed to control service file.\n')",
    kLeave[1], kLeave[2]};

// The text of errno is not compared: it stands as "[...]" here.
const Steps kNotExecuted = {
    R"(CVPrintf 0 null null addonsservice RunActionControl 'Failed to execute control function [...].\n')"};

std::string JournalWithoutErrno() {
    return std::regex_replace(fake::Journal(), std::regex("(control function) \\[[^\\]]*\\]"), "$1 [...]");
}

struct ActionCase {
    const char* name;
    const char* answers;
    int result;
    Steps steps;
};

const ActionCase kActionCases[] = {
    {"notified", "{}", 0,
     kBegin +
         Steps{"> ChangeServiceStatus 6 4", "> DaemonCtrl::Run 11", "> ChangeServiceStatus 6 1",
               "> _exit 0"} +
         kReaped +
         Steps{kLeave[0], "CVClientNotify::Notify 24 6 1 0", "CVLog 321913013 0 'Local Display' 'by hand' ''",
               kLeave[1], kLeave[2]}},
    {"lock_not_obtained", R"({"BeginCriticalSection":-1})", -1, kTakeLock},
    {"fork_fails", R"({"fork":11})", -1,
     kTakeLock + Steps{"fork", R"(CVPrintf 0 null null addonsservice RunActionControl 'Failed to fork\n')"} +
         kFailedAndLeave},
    {"pid_file_not_written", R"({"PLIBCProcPidFileCreate":-1})", -1,
     kBegin +
         Steps{"> CVPrintf 0 null null addonsservice RunActionControl "
               R"('Failed to write pid file [/tmp/cv_name6.pid].\n')",
               "> _exit -1"} +
         kReaped + kNotExecuted + kFailedAndLeave},
    {"killed_on_the_way", R"({"DaemonCtrl::Run":"killed"})", -1,
     kBegin + Steps{"> ChangeServiceStatus 6 4", "> DaemonCtrl::Run 11"} + kReaped + kNotExecuted +
         kFailedAndLeave},
};

using Action = TableTest<ActionCase>;

TEST_P(Action, RunsUnderTheLock) {
    fake::AnswerEach(GetParam().answers);
    AddOns addons(ADDON_SERVICE_LOCAL_DISPLAY);
    addons.SetLogInfo("Local Display", "by hand");
    EXPECT_EQ(GetParam().result, addons.ExecServiceControl(CONTROL_ACTION_START, true));
    EXPECT_EQ(fake::Lines(GetParam().steps), JournalWithoutErrno());
}

INSTANTIATE_TEST_SUITE_P(, Action, testing::ValuesIn(kActionCases), CaseName<ActionCase>);

// The status stays at "in progress": nobody knows what the service is doing.
TEST(AddOns, LeavesTheStatusInProgressWhenTheStrategyFails) {
    const fake::Session session;
    fake::Answer("WebUIOptions::Apply", 1);
    EXPECT_EQ(-1, AddOns(ADDON_SERVICE_CMS).RunActionControl(CONTROL_ACTION_STOP));
    const Steps steps = {
        "fork",
        "> PLIBCProcPidFileCreate /tmp/cv_name2.pid",
        "> ChangeServiceStatus 2 4",
        "> WebUIOptions",
        "> WebUIOptions::SetOption 0 false",
        "> WebUIOptions::Apply",
        "> ~WebUIOptions",
        R"(> CVPrintf 0 null null addonsservice RunActionControl 'Failed to run action control.\n')",
        "> _exit -1"};
    EXPECT_EQ(fake::Lines(steps + kReaped + kNotExecuted + Steps{"RemoveFileIfExist /tmp/cv_name2.pid"}),
              JournalWithoutErrno());
}

struct WaitCase {
    const char* name;
    int error;
    int result;
    const char* logged;  // part of the journal
};

const WaitCase kWaitCases[] = {
    {"interrupted_goes_on", EINTR, 0, "RemoveFileIfExist"},
    {"no_child", ECHILD, -1, "Failed to execute control function [No child processes]."},
};

TEST(AddOns, WaitsAgainOnlyWhenInterrupted) {
    for (const WaitCase& row : kWaitCases) {
        const fake::Session session;
        fake::AnswerOnce("waitpid", row.error);
        EXPECT_EQ(row.result, AddOns(ADDON_SERVICE_3).RunActionControl(CONTROL_ACTION_STOP)) << row.name;
        EXPECT_NE(std::string::npos, fake::Journal().find(row.logged)) << row.name;
    }
}

}  // namespace
