// The add-on service of a request: its files, and control actions under its lock.
#include "addons/addonsservice.h"

#include "fake/journal.h"
#include "fake/processes.h"
#include "fake/script.h"
#include "fake/session.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <regex>
#include <string>
#include <vector>

namespace {

using Steps = std::vector<std::string>;

struct FileCase {
    int file;
    const char* name;
};

const FileCase kFileCases[] = {
    {PROCESS_FILE_PID, "/tmp/cv_name6.pid"},
    {PROCESS_FILE_LOCK, "/tmp/cv_name6.lock"},
    {PROCESS_FILE_UPDATE_LOCK, "/tmp/cv_AddOns_Update_name6.lock"},
    {3, "/tmp/cv_name6.lock"},
    {-1, "/tmp/cv_name6.lock"},
};

TEST(AddOns, NamesItsFiles) {
    const AddOns addons(ADDON_SERVICE_LOCAL_DISPLAY);
    for (const FileCase& row : kFileCases) {
        EXPECT_EQ(row.name, addons.GetServiceFile(static_cast<PROCESS_FILE>(row.file)));
    }
}

TEST(AddOns, TakesAnyLockFileForAnActionUnderWay) {
    const fake::Session session;
    fake::Answer("IsFileExist", true);
    EXPECT_TRUE(AddOns(ADDON_SERVICE_3).IsLockFileExist());
    EXPECT_EQ(fake::Lines({"GetServiceStr 3", "IsFileExist /tmp/cv_name3.lock"}), fake::Journal());
}

// What a start does tells which way of control the service has.
struct ControllerCase {
    const char* name;
    int service;
    Steps steps;  // of the action process, between the two status changes
};

const ControllerCase kControllerCases[] = {
    {"none", 0, {}},
    {"device_pack", 1, {}},
    {"cms", 2, {"WebUIOptions", "WebUIOptions::SetOption 0 true", "WebUIOptions::Apply", "~WebUIOptions"}},
    {"service3", 3, {"DaemonCtrl::Run 1"}},
    {"service4", 4, {}},
    {"service5", 5, {"DaemonCtrl::Run 6"}},
    {"local_display", 6, {"DaemonCtrl::Run 11"}},
    {"above_all", 7, {}},
    {"below_all", -1, {}},
};

Steps Started(const std::string& service, const Steps& strategy) {
    Steps steps = {"GetServiceStr " + service, "fork",
                   "> PLIBCProcPidFileCreate /tmp/cv_name" + service + ".pid",
                   "> ChangeServiceStatus " + service + " 4"};
    for (const std::string& step : strategy) {
        steps.push_back("> " + step);
    }
    for (const std::string& step :
         Steps{"> ChangeServiceStatus " + service + " 1", "> _exit 0", "waitpid child1",
               "RemoveFileIfExist /tmp/cv_name" + service + ".pid"}) {
        steps.push_back(step);
    }
    return steps;
}

class Controller : public testing::TestWithParam<ControllerCase> {
    fake::Session session_;
};

TEST_P(Controller, IsThatOfTheService) {
    AddOns addons(ADDON_SERVICE_5);
    addons.InitService(static_cast<ADDON_SERVICE>(GetParam().service));
    EXPECT_EQ(0, addons.RunActionControl(CONTROL_ACTION_START));
    EXPECT_EQ(fake::Lines(Started(std::to_string(GetParam().service), GetParam().steps)), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Controller, testing::ValuesIn(kControllerCases),
                         [](const auto& row) { return std::string(row.param.name); });

const Steps kEnter = {"GetServiceStr 6", "BeginCriticalSection /tmp/cv_name6.lock 3000", "GetServiceStr 6",
                      "fork"};
const Steps kActs = {"> PLIBCProcPidFileCreate /tmp/cv_name6.pid",
                     "> ChangeServiceStatus 6 4",
                     "> DaemonCtrl::Run 11",
                     "> ChangeServiceStatus 6 1",
                     "> _exit 0",
                     "waitpid child1"};
const Steps kReaped = {"RemoveFileIfExist /tmp/cv_name6.pid"};
const Steps kAnnounced = {"CVClientNotify::Notify 24 6 1 0",
                          "CVLog 321913013 0 'Local Display' 'by hand' ''"};
const Steps kFailed = {
    R"(CVPrintf 0 null null addonsservice ExecServiceControl 'Failed to control service file.\n')"};
const Steps kLeave = {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_name6.lock"};

Steps Join(const std::vector<Steps>& parts) {
    Steps all;
    for (const Steps& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// The text of errno is left to each row's test: it stands as "[...]" here.
const Steps kNotExecuted = {
    R"(CVPrintf 0 null null addonsservice RunActionControl 'Failed to execute control function [...].\n')"};

std::string JournalWithoutErrno() {
    return std::regex_replace(fake::Journal(), std::regex("(control function) \\[[^\\]]*\\]"), "$1 [...]");
}

struct ActionCase {
    const char* name;
    bool notify;
    const char* answers;
    int result;
    Steps steps;
};

const ActionCase kActionCases[] = {
    {"quiet", false, "{}", 0, Join({kEnter, kActs, kReaped, kLeave})},
    {"notified", true, "{}", 0, Join({kEnter, kActs, kReaped, kAnnounced, kLeave})},
    {"lock_not_obtained",
     true,
     R"({"BeginCriticalSection":-1})",
     -1,
     {"GetServiceStr 6", "BeginCriticalSection /tmp/cv_name6.lock 3000"}},
    {"fork_fails", true, R"({"fork":11})", -1,
     Join({kEnter,
           {R"(CVPrintf 0 null null addonsservice RunActionControl 'Failed to fork\n')"},
           kReaped,
           kFailed,
           kLeave})},
    {"pid_file_not_written", true, R"({"PLIBCProcPidFileCreate":-1})", -1,
     Join({kEnter,
           {"> PLIBCProcPidFileCreate /tmp/cv_name6.pid",
            "> CVPrintf 0 null null addonsservice RunActionControl "
            R"('Failed to write pid file [/tmp/cv_name6.pid].\n')",
            "> _exit -1", "waitpid child1"},
           kNotExecuted,
           kReaped,
           kFailed,
           kLeave})},
    {"killed_on_the_way", true, R"({"DaemonCtrl::Run":"killed"})", -1,
     Join({kEnter,
           {"> PLIBCProcPidFileCreate /tmp/cv_name6.pid", "> ChangeServiceStatus 6 4", "> DaemonCtrl::Run 11",
            "waitpid child1"},
           kNotExecuted,
           kReaped,
           kFailed,
           kLeave})},
};

class Action : public testing::TestWithParam<ActionCase> {
    fake::Session session_;
};

TEST_P(Action, RunsUnderTheLock) {
    fake::AnswerEach(GetParam().answers);
    AddOns addons(ADDON_SERVICE_LOCAL_DISPLAY);
    addons.SetLogInfo("Local Display", "by hand");
    EXPECT_EQ(GetParam().result, addons.ExecServiceControl(CONTROL_ACTION_START, GetParam().notify));
    EXPECT_EQ(fake::Lines(GetParam().steps), JournalWithoutErrno());
}

INSTANTIATE_TEST_SUITE_P(, Action, testing::ValuesIn(kActionCases),
                         [](const auto& row) { return std::string(row.param.name); });

// The status stays at "in progress": nobody knows what the service is doing.
TEST(AddOns, LeavesTheStatusInProgressWhenTheStrategyFails) {
    const fake::Session session;
    fake::Answer("WebUIOptions::Apply", 1);
    EXPECT_EQ(-1, AddOns(ADDON_SERVICE_CMS).ExecServiceControl(CONTROL_ACTION_STOP, true));
    const Steps steps = {
        "GetServiceStr 2",
        "BeginCriticalSection /tmp/cv_name2.lock 3000",
        "GetServiceStr 2",
        "fork",
        "> PLIBCProcPidFileCreate /tmp/cv_name2.pid",
        "> ChangeServiceStatus 2 4",
        "> WebUIOptions",
        "> WebUIOptions::SetOption 0 false",
        "> WebUIOptions::Apply",
        "> ~WebUIOptions",
        R"(> CVPrintf 0 null null addonsservice RunActionControl 'Failed to run action control.\n')",
        "> _exit -1",
        "waitpid child1"};
    EXPECT_EQ(fake::Lines(Join({steps,
                                kNotExecuted,
                                {"RemoveFileIfExist /tmp/cv_name2.pid"},
                                kFailed,
                                {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_name2.lock"}})),
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
        fake::FailOnce("waitpid", row.error);
        EXPECT_EQ(row.result, AddOns(ADDON_SERVICE_3).RunActionControl(CONTROL_ACTION_STOP)) << row.name;
        EXPECT_NE(std::string::npos, fake::Journal().find(row.logged)) << row.name;
    }
}

}  // namespace
