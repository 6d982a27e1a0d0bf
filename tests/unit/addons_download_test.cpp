// "DownloadStart", "DownloadProgress" and "DownloadCancel".
#include "fake/journal.h"
#include "fake/json.h"
#include "fake/processes.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/steps.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace {

using fake::Steps;
using fake::operator+;

Steps Begin(const std::string& service) {
    return fake::Admission() + Steps{"GetParam service 0", "AddonsUpdate " + service};
}

const char kNoDownload[] = R"(SetError 400 {"param1":"","param2":""})";

struct StartCase {
    const char* name;
    Json::Value found;  // by the check
    int forkError;
    int download;  // its result
    Steps request;
    Steps child;
};

const Steps kCheck = {"AddonsUpdate::CheckNewRelease false ''"};
const Steps kFork = {"PLIBCProcFork", "fork"};
const Steps kDownload = {"> setsid", "> AddonsUpdate::Download"};

const StartCase kStartCases[] = {
    {"newer", true, 0, 0, kCheck + kFork + Steps{"SetSuccess null"}, kDownload + Steps{"> _exit 0"}},
    {"download_fails", true, 0, -1, kCheck + kFork + Steps{"SetSuccess null"},
     kDownload +
         Steps{R"(> CVPrintf 0 null null addons HandleDownloadStart 'Failed to download device pack.\n')",
               "> _exit 0"}},
    {"nothing_newer", false, 0, 0, kCheck + Steps{kNoDownload}, {}},
    {"check_fails",
     -1,
     0,
     0,
     kCheck + Steps{R"(CVPrintf 0 null null addons HandleDownloadStart 'Failed to check new release.\n')",
                    kNoDownload},
     {}},
    {"no_process", true, EAGAIN, 0, kCheck + kFork + Steps{kNoDownload}, {}},
};

class DownloadStart : public testing::TestWithParam<StartCase> {
    fake::Session session_;
};

// The child runs no destructors.
TEST_P(DownloadStart, DownloadsInADetachedChild) {
    fake::Answer("AddonsUpdate::CheckNewRelease", GetParam().found);
    fake::Answer("AddonsUpdate::Download", GetParam().download);
    if (GetParam().forkError != 0) {
        fake::FailOnce("fork", GetParam().forkError);
    }
    const fake::DetachedJournal journal =
        fake::ServeAndReap(Process, fake::Authorized("DownloadStart", R"({"service":6})"));
    EXPECT_EQ(fake::Lines(Begin("6") + GetParam().request + Steps{"~AddonsUpdate 6"}), journal.request);
    EXPECT_EQ(fake::Lines(GetParam().child), journal.child);
}

INSTANTIATE_TEST_SUITE_P(, DownloadStart, testing::ValuesIn(kStartCases),
                         [](const auto& row) { return std::string(row.param.name); });

struct ProgressCase {
    const char* name;
    std::vector<const char*> states;  // as JSON; the last one holds
    Steps steps;
};

const std::string kRead = "AddonsUpdate::GetDownloadStatus ";

const ProgressCase kProgressCases[] = {
    {"running",
     {R"(["2.0-1",40,1])"},
     {kRead + "'' 0 0", R"(SetSuccess {"percent":40,"status":1,"version":"name6 2.0-1"})"}},
    {"any_other_state",
     {R"(["2.0-1",100,9])"},
     {kRead + "'' 0 0", R"(SetSuccess {"percent":100,"status":9,"version":"name6 2.0-1"})"}},
    {"running_after_a_while",
     {"[]", R"(["2.0-1",1,1])"},
     {kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0",
      R"(SetSuccess {"percent":1,"status":1,"version":"name6 2.0-1"})"}},
    {"none",
     {"[]"},
     {kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0",
      "sleep 1", kRead + "'' 0 0", "sleep 1", R"(SetSuccess {"percent":0,"status":4,"version":"name6 "})"}},
    {"none_but_a_version",
     {"[]", "[]", "[]", "[]", R"(["2.0-1",7])"},
     {kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0", "sleep 1", kRead + "'' 0 0",
      "sleep 1", kRead + "'' 0 0", "sleep 1",
      R"(SetSuccess {"percent":7,"status":4,"version":"name6 2.0-1"})"}},
    {"unreadable", {"-1"}, {kRead + "'' 0 0", kNoDownload}},
    {"unreadable_after_a_while",
     {R"(["2.0-1"])", "-1"},
     {kRead + "'' 0 0", "sleep 1", kRead + "2.0-1 0 0", kNoDownload}},
};

class DownloadProgress : public testing::TestWithParam<ProgressCase> {
    fake::Session session_;
};

TEST_P(DownloadProgress, ReadsAtMostFiveTimes) {
    fake::SetClock(1'700'000'000);
    for (const char* state : GetParam().states) {
        fake::AnswerOnce("AddonsUpdate::GetDownloadStatus", fake::ParseJson(state));
    }
    fake::Serve(Process, fake::Authorized("DownloadProgress", R"({"service":6})"));
    EXPECT_EQ(
        fake::Lines(fake::Admission() + Steps{"GetParam service 0", "GetServiceStr 6", "AddonsUpdate 6"} +
                    GetParam().steps + Steps{"~AddonsUpdate 6"}),
        fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, DownloadProgress, testing::ValuesIn(kProgressCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(DownloadCancel, AnswersAsTheReleaseClientDoes) {
    for (const int result : {0, -1}) {
        const fake::Session session;
        fake::Answer("AddonsUpdate::CancelDownload", result);
        fake::Serve(Process, fake::Authorized("DownloadCancel", "{}"));
        EXPECT_EQ(
            fake::Lines(Begin("0") + Steps{"AddonsUpdate::CancelDownload",
                                           result == 0 ? "SetSuccess null" : kNoDownload, "~AddonsUpdate 0"}),
            fake::Journal());
    }
}

}  // namespace
