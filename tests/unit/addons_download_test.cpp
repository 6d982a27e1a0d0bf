// "DownloadStart", "DownloadProgress" and "DownloadCancel".
#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const char kNoDownload[] = R"(SetError 400 {"param1":"","param2":""})";

struct StartCase {
    const char* name;
    const char* answers;
    Steps steps;  // after the check
};

const Steps kFork = {"PLIBCProcFork", "fork"};
const Steps kDownload = {"> setsid", "> AddonsUpdate::Download"};

const StartCase kStartCases[] = {
    {"newer", R"({"AddonsUpdate::CheckNewRelease":true})",
     kFork + kDownload + Steps{"> _exit 0", "SetSuccess null"}},
    {"download_fails", R"({"AddonsUpdate::CheckNewRelease":true,"AddonsUpdate::Download":-1})",
     kFork + kDownload +
         Steps{R"(> CVPrintf 0 null null addons HandleDownloadStart 'Failed to download device pack.\n')",
               "> _exit 0", "SetSuccess null"}},
    {"nothing_newer", R"({"AddonsUpdate::CheckNewRelease":false})", {kNoDownload}},
    {"check_fails",
     R"({"AddonsUpdate::CheckNewRelease":-1})",
     {R"(CVPrintf 0 null null addons HandleDownloadStart 'Failed to check new release.\n')", kNoDownload}},
    {"no_process", R"({"AddonsUpdate::CheckNewRelease":true,"fork":11})", kFork + Steps{kNoDownload}},
};

using DownloadStart = TableTest<StartCase>;

// The child runs no destructors.
TEST_P(DownloadStart, DownloadsInADetachedChild) {
    fake::AnswerEach(GetParam().answers);
    ExpectCalls(fake::Authorized("DownloadStart", R"({"service":6})"),
                Steps{"GetParam service 0", "AddonsUpdate 6", "AddonsUpdate::CheckNewRelease false ''"} +
                    GetParam().steps + Steps{"~AddonsUpdate 6"});
}

INSTANTIATE_TEST_SUITE_P(, DownloadStart, testing::ValuesIn(kStartCases), CaseName<StartCase>);

struct ProgressCase {
    const char* name;
    std::vector<const char*> states;  // as JSON; the last one holds
    Steps steps;
};

const Steps kRead = {"AddonsUpdate::GetDownloadStatus '' 0 0"};
const Steps kReadAndWait = kRead + Steps{"sleep 1"};

const ProgressCase kProgressCases[] = {
    {"any_state",
     {R"(["2.0-1",100,9])"},
     kRead + Steps{R"(SetSuccess {"percent":100,"status":9,"version":"name6 2.0-1"})"}},
    {"running_after_a_while",
     {"[]", R"(["2.0-1",1,1])"},
     kReadAndWait + kRead + Steps{R"(SetSuccess {"percent":1,"status":1,"version":"name6 2.0-1"})"}},
    {"none",
     {"[]"},
     kReadAndWait + kReadAndWait + kReadAndWait + kReadAndWait + kReadAndWait +
         Steps{R"(SetSuccess {"percent":0,"status":4,"version":"name6 "})"}},
    {"unreadable_after_a_while",
     {R"(["2.0-1"])", "-1"},
     kReadAndWait + Steps{"AddonsUpdate::GetDownloadStatus 2.0-1 0 0", kNoDownload}},
};

using DownloadProgress = TableTest<ProgressCase>;

TEST_P(DownloadProgress, ReadsAtMostFiveTimes) {
    for (const char* state : GetParam().states) {
        fake::AnswerOnce("AddonsUpdate::GetDownloadStatus", fake::ParseJson(state));
    }
    ExpectCalls(fake::Authorized("DownloadProgress", R"({"service":6})"),
                Steps{"GetParam service 0", "AddonsUpdate 6"} + GetParam().steps + Steps{"~AddonsUpdate 6"});
}

INSTANTIATE_TEST_SUITE_P(, DownloadProgress, testing::ValuesIn(kProgressCases), CaseName<ProgressCase>);

TEST(DownloadCancel, AnswersAsTheReleaseClientDoes) {
    for (const int result : {0, -1}) {
        const fake::Session session;
        fake::Answer("AddonsUpdate::CancelDownload", result);
        ExpectCalls(fake::Authorized("DownloadCancel"),
                    {"GetParam service 0", "AddonsUpdate 0", "AddonsUpdate::CancelDownload",
                     result == 0 ? "SetSuccess null" : kNoDownload, "~AddonsUpdate 0"});
    }
}

}  // namespace
