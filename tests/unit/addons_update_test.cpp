// "GetUpdateInfo", "CheckUpdateInfo" and "SetAutoUpdate".
#include "fake/journal.h"
#include "fake/json.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/steps.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using fake::Steps;
using fake::operator+;

const std::string kLockAddOns = "BeginCriticalSection /tmp/cv_addons_lock 30000";
const Steps kUnlockAddOns = {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_addons_lock"};
const Steps kModel = {"GetHxModelName ''", "IsNVRModel model"};

std::string Check(bool hasNew) {
    return std::string("AddonsUpdate::CheckNewRelease ") + (hasNew ? "true" : "false") + " ''";
}

struct InfoCase {
    const char* name;
    bool isNvr;
    std::vector<Json::Value> found;  // by the checks
    Steps steps;                     // under the lock
    const char* answer;
};

Steps BothChecks(bool hasNew) {
    return Steps{Check(false)} + kModel + Steps{"AddonsUpdate 6", Check(hasNew), "~AddonsUpdate 6"};
}

const InfoCase kInfoCases[] = {
    {"none", true, {false, false}, BothChecks(false), "0"},
    {"both", true, {true, true}, BothChecks(true), "2"},
    {"local_display", true, {false, true}, BothChecks(false), "1"},
    {"no_display_of_its_own", false, {true}, Steps{Check(false)} + kModel, "1"},
    {"device_pack_unknown", true, {-1, true}, BothChecks(false), "1"},
    {"local_display_unknown", true, {true, -1}, BothChecks(true), "2"},
};

class GetUpdateInfo : public testing::TestWithParam<InfoCase> {
    fake::Session session_;
};

TEST_P(GetUpdateInfo, ChecksUnderTheLock) {
    fake::Answer("IsNVRModel", GetParam().isNvr);
    for (const Json::Value& found : GetParam().found) {
        fake::AnswerOnce("AddonsUpdate::CheckNewRelease", found);
    }
    fake::Serve(Process, fake::Authorized("GetUpdateInfo"));
    EXPECT_EQ(fake::Lines(fake::Admission() + Steps{"AddonsUpdate 1", kLockAddOns} + GetParam().steps +
                          kUnlockAddOns +
                          Steps{R"(SetSuccess {"newUpdateCnt":)" + std::string(GetParam().answer) + "}",
                                "~AddonsUpdate 1"}),
              fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, GetUpdateInfo, testing::ValuesIn(kInfoCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(GetUpdateInfoBusy, CountsNothingAndLeavesTheLockAlone) {
    const fake::Session session;
    fake::Answer("BeginCriticalSection", -1);
    fake::Serve(Process, fake::Authorized("GetUpdateInfo"));
    EXPECT_EQ(fake::Lines(fake::Admission() + Steps{"AddonsUpdate 1", kLockAddOns,
                                                    R"(SetSuccess {"newUpdateCnt":0})", "~AddonsUpdate 1"}),
              fake::Journal());
}

struct StateCase {
    const char* name;
    std::vector<int> locks;
    const char* download;  // as JSON
    Json::Value found;
    Steps steps;
    const char* answer;
};

const Steps kProbe = {"GetServiceStr 6", "BeginCriticalSection /tmp/cv_AddOns_Update_name6.lock 100"};
const Steps kIdle =
    kProbe + Steps{"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_AddOns_Update_name6.lock",
                   "AddonsUpdate::GetDownloadStatus '' 0 0"};
const Steps kCheck = kIdle + Steps{kLockAddOns, Check(false)} + kUnlockAddOns;

const StateCase kStateCases[] = {
    {"updating", {-1}, "[]", false, kProbe, "6"},
    {"download_unreadable", {0}, "-1", false, kIdle, "7"},
    {"downloading", {0}, R"(["",1,1])", false, kIdle, "4"},
    {"downloaded", {0}, R"(["",100,2])", false, kIdle, "3"},
    {"download_failed", {0}, R"(["",1,4])", false, kIdle, "5"},
    {"other_download_state", {0, 0}, R"(["",1,3])", true, kCheck, "2"},
    {"newer", {0, 0}, "[]", true, kCheck, "2"},
    {"nothing_newer", {0, 0}, "[]", false, kCheck, "1"},
    {"check_fails", {0, 0}, "[]", -1, kCheck, "7"},
    {"check_under_way", {0, -1}, "[]", false, kIdle + Steps{kLockAddOns}, "0"},
};

class CheckUpdateInfo : public testing::TestWithParam<StateCase> {
    fake::Session session_;
};

TEST_P(CheckUpdateInfo, StopsAtTheFirstThatAnswers) {
    for (const int lock : GetParam().locks) {
        fake::AnswerOnce("BeginCriticalSection", lock);
    }
    fake::Answer("AddonsUpdate::GetDownloadStatus", fake::ParseJson(GetParam().download));
    fake::Answer("AddonsUpdate::CheckNewRelease", GetParam().found);
    fake::Serve(Process, fake::Authorized("CheckUpdateInfo", R"({"service":6})"));
    EXPECT_EQ(
        fake::Lines(
            fake::Admission() + Steps{"GetParam service 0", "AddonsUpdate 6"} + GetParam().steps +
            Steps{R"(SetSuccess {"status":)" + std::string(GetParam().answer) + "}", "~AddonsUpdate 6"}),
        fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, CheckUpdateInfo, testing::ValuesIn(kStateCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CheckUpdateInfoOther, TakesNoLockForAServiceWithoutReleases) {
    for (const std::string service : {"0", "2", "5", "7"}) {
        const fake::Session session;
        fake::Serve(Process, fake::Authorized("CheckUpdateInfo", R"({"service":)" + service + "}"));
        EXPECT_EQ(
            fake::Lines(fake::Admission() + Steps{"GetParam service 0", "AddonsUpdate " + service,
                                                  R"(SetSuccess {"status":1})", "~AddonsUpdate " + service}),
            fake::Journal());
    }
}

struct SwitchCase {
    const char* name;
    const char* service;
    bool isEnabled;
    const char* answers;
    Steps steps;
};

Steps Write(const std::string& service) {
    return {"SetSettingEnabled key" + service + " true"};
}

Steps Schedule(const std::string& service) {
    return {"AddonsUpdate " + service, "AddonsUpdate::SetAutoDownloadCrontabRule true"};
}

std::string Log(const std::string& function, const std::string& text) {
    return "CVPrintf 0 null null addonsservice " + function + " '" + text + "\\n'";
}

Steps Failed(const std::string& service) {
    return {
        "CVPrintf 0 null null addons HandleSetAutoUpdate '[" + service + "] Failed to set auto-update.\\n'",
        "SetError 400 null"};
}

const char kScheduleText[] = "Failed to set auto-update schedule.";

const SwitchCase kSwitchCases[] = {
    {"changed", "6", false, "{}", Write("6") + Schedule("6") + Steps{"~AddonsUpdate 6", "SetSuccess null"}},
    {"as_it_is", "6", true, "{}", {"SetSuccess null"}},
    {"without_schedule", "3", false, "{}",
     Write("3") + Steps{"AddonsUpdate 3", "~AddonsUpdate 3", "SetSuccess null"}},
    {"not_written", "1", false, R"({"SetSettingEnabled":-1})",
     Write("1") + Steps{Log("SetAutoUpdate", "Failed to set auto-update key.")} + Failed("1")},
    {"not_scheduled", "1", false, R"({"AddonsUpdate::SetAutoDownloadCrontabRule":-1})",
     Write("1") + Schedule("1") +
         Steps{Log("SetAutoDownload", kScheduleText), "~AddonsUpdate 1",
               Log("SetAutoUpdate", kScheduleText)} +
         Failed("1")},
};

class SetAutoUpdate : public testing::TestWithParam<SwitchCase> {
    fake::Session session_;
};

TEST_P(SetAutoUpdate, WritesTheSettingThenTheSchedule) {
    fake::AnswerEach(GetParam().answers);
    fake::Answer("IsSettingEnabled", GetParam().isEnabled);
    const std::string service = GetParam().service;
    fake::Serve(Process, fake::Authorized("SetAutoUpdate", R"({"blEnable":true,"service":)" + service + "}"));
    EXPECT_EQ(
        fake::Lines(fake::Admission() +
                    Steps{R"(GetParam blEnable "")", "GetParam service 0", "GetAutoDownloadKey " + service,
                          "IsSettingEnabled key" + service + " false false"} +
                    GetParam().steps),
        fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, SetAutoUpdate, testing::ValuesIn(kSwitchCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
