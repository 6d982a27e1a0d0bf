// "GetUpdateInfo", "CheckUpdateInfo" and "SetAutoUpdate".
#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string kLockAddOns = "BeginCriticalSection /tmp/cv_addons_lock 30000";
const Steps kUnlockAddOns = {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_addons_lock"};
const Steps kModel = {"GetHxModelName ''", "IsNVRModel model"};

std::string Check(bool hasNew) {
    return std::string("AddonsUpdate::CheckNewRelease ") + (hasNew ? "true" : "false") + " ''";
}

Steps BothChecks(bool hasNew) {
    return Steps{Check(false)} + kModel + Steps{"AddonsUpdate 6", Check(hasNew), "~AddonsUpdate 6"};
}

struct InfoCase {
    const char* name;
    int lock;
    bool isNvr;
    std::vector<Json::Value> found;  // by the checks
    Steps steps;
    const char* answer;
};

const InfoCase kInfoCases[] = {
    {"none", 0, true, {false, false}, BothChecks(false) + kUnlockAddOns, "0"},
    {"both", 0, true, {true, true}, BothChecks(true) + kUnlockAddOns, "2"},
    {"no_display_of_its_own", 0, false, {true}, Steps{Check(false)} + kModel + kUnlockAddOns, "1"},
    {"device_pack_unknown", 0, true, {-1, true}, BothChecks(false) + kUnlockAddOns, "1"},
    {"local_display_unknown", 0, true, {true, -1}, BothChecks(true) + kUnlockAddOns, "2"},
    {"lock_not_obtained", -1, true, {true, true}, {}, "0"},
};

using GetUpdateInfo = TableTest<InfoCase>;

TEST_P(GetUpdateInfo, ChecksUnderTheLock) {
    fake::Answer("BeginCriticalSection", GetParam().lock);
    fake::Answer("IsNVRModel", GetParam().isNvr);
    for (const Json::Value& found : GetParam().found) {
        fake::AnswerOnce("AddonsUpdate::CheckNewRelease", found);
    }
    ExpectCalls(fake::Authorized("GetUpdateInfo"),
                Steps{"AddonsUpdate 1", kLockAddOns} + GetParam().steps +
                    Steps{R"(SetSuccess {"newUpdateCnt":)" + std::string(GetParam().answer) + "}",
                          "~AddonsUpdate 1"});
}

INSTANTIATE_TEST_SUITE_P(, GetUpdateInfo, testing::ValuesIn(kInfoCases), CaseName<InfoCase>);

struct StateCase {
    const char* name;
    std::string service;
    std::vector<int> locks;
    const char* download;  // as JSON
    Json::Value found;
    Steps steps;
    const char* answer;
};

const Steps kProbe = {"BeginCriticalSection /tmp/cv_AddOns_Update_name6.lock 100"};
const Steps kIdle =
    kProbe + Steps{"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_AddOns_Update_name6.lock",
                   "AddonsUpdate::GetDownloadStatus '' 0 0"};
const Steps kCheck = kIdle + Steps{kLockAddOns, Check(false)} + kUnlockAddOns;

const StateCase kStateCases[] = {
    {"service_without_releases", "5", {}, "[]", true, {}, "1"},
    {"updating", "6", {-1}, "[]", false, kProbe, "6"},
    {"download_unreadable", "6", {0}, "-1", false, kIdle, "7"},
    {"downloading", "6", {0}, R"(["",1,1])", false, kIdle, "4"},
    {"downloaded", "6", {0}, R"(["",100,2])", false, kIdle, "3"},
    {"download_failed", "6", {0}, R"(["",1,4])", false, kIdle, "5"},
    {"other_download_state", "6", {0, 0}, R"(["",1,3])", true, kCheck, "2"},
    {"nothing_newer", "6", {0, 0}, "[]", false, kCheck, "1"},
    {"check_fails", "6", {0, 0}, "[]", -1, kCheck, "7"},
    {"check_under_way", "6", {0, -1}, "[]", false, kIdle + Steps{kLockAddOns}, "0"},
};

using CheckUpdateInfo = TableTest<StateCase>;

TEST_P(CheckUpdateInfo, StopsAtTheFirstThatAnswers) {
    const std::string& service = GetParam().service;
    for (const int lock : GetParam().locks) {
        fake::AnswerOnce("BeginCriticalSection", lock);
    }
    fake::Answer("AddonsUpdate::GetDownloadStatus", fake::ParseJson(GetParam().download));
    fake::Answer("AddonsUpdate::CheckNewRelease", GetParam().found);
    ExpectCalls(fake::Authorized("CheckUpdateInfo", R"({"service":)" + service + "}"),
                Steps{"GetParam service 0", "AddonsUpdate " + service} + GetParam().steps +
                    Steps{R"(SetSuccess {"status":)" + std::string(GetParam().answer) + "}",
                          "~AddonsUpdate " + service});
}

INSTANTIATE_TEST_SUITE_P(, CheckUpdateInfo, testing::ValuesIn(kStateCases), CaseName<StateCase>);

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

using SetAutoUpdate = TableTest<SwitchCase>;

TEST_P(SetAutoUpdate, WritesTheSettingThenTheSchedule) {
    fake::AnswerEach(GetParam().answers);
    fake::Answer("IsSettingEnabled", GetParam().isEnabled);
    const std::string service = GetParam().service;
    ExpectCalls(fake::Authorized("SetAutoUpdate", R"({"blEnable":true,"service":)" + service + "}"),
                Steps{R"(GetParam blEnable "")", "GetParam service 0", "GetAutoDownloadKey " + service,
                      "IsSettingEnabled key" + service + " false false"} +
                    GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(, SetAutoUpdate, testing::ValuesIn(kSwitchCases), CaseName<SwitchCase>);

}  // namespace
