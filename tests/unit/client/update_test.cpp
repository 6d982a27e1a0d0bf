// "updates", "download", "cancel", "update", "auto-update" and "restore": what they ask for, and what they
// say of what was seen.
#include "client/transferrate.h"

#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace {

const std::string kRelease =
    R"({"service":1,"version":"2.2-1","date":"2026-11-25","notes":"Better\nmore","size":3145728})";

FakeReply State(int status) {
    return Success("{\"status\":" + std::to_string(status) + "}");
}

FakeReply Progress(int status, const std::string& version = "2.2-1") {
    return Success(R"({"version":"device_pack )" + version + R"(","percent":9,"status":)" +
                   std::to_string(status) + "}");
}

FakeReply Downloads(int status, const std::string& problem = "") {
    return Success(R"({"downloads":[{"service":1,"version":"2.2-1","bytes":1,"size":4,"status":)" +
                   std::to_string(status) + R"(,"problem":")" + problem + "\"}]}");
}

FakeReply Info(const std::string& version) {
    return Success(R"({"version":")" + version + R"(","blFactoryCopy":true,"blAutoUpdate":false})");
}

// Where a newer release of the Device Pack can be downloaded.
FakeReplies Replies() {
    return {
        {"List", Success(R"({"list":[{"service":1,"info":{"shortName":"device_pack","name":"DP",)"
                         R"("blHasPackages":true,"blRunning":true,"version":"2.1-9","blAutoUpdate":true}},)"
                         R"({"service":2,"info":{"shortName":"cms","name":"CMS","blHasPackages":false}}]})")},
        {"CheckUpdateInfo", State(2)},
        {"GET /releases", Success("{\"releases\":[" + kRelease + "]}")},
        {"GET /downloads", Success(R"({"downloads":[]})")},
        {"DownloadProgress", InTurn({Progress(1), Progress(2)})},
        {"GetInfo", InTurn({Info("2.1-9"), Info("2.2-1")})},
        {"GET /programs", Success(R"({"programs":[]})")},
        {"GET /programs?request=r1",
         Success(R"({"programs":[{"path":"/s/restore","arguments":[],"exitStatus":3}]})")},
        {kLog, Success(R"({"lines":[]})")},
    };
}

FakeReplies With(int state) {
    return {{"CheckUpdateInfo", State(state)}};
}

FakeReplies With(const FakeReply& progress, const FakeReply& downloads = Success(R"({"downloads":[]})")) {
    return {{"DownloadProgress", progress}, {"GET /downloads", downloads}};
}

const FakeReplies kAsAbove;
const FakeReplies kUpToDate = With(1);
const FakeReplies kIsDownloaded = {{"CheckUpdateInfo", State(3)}, {"DownloadProgress", Progress(2)}};
const FakeReplies kIsUpdating = With(6);
const FakeReplies kCheckFailed = With(7);
const FakeReplies kFailedBefore = {{"CheckUpdateInfo", State(5)},
                                   {"GET /downloads", Downloads(4, "no space")},
                                   {"DownloadProgress", InTurn({Progress(4), Progress(1), Progress(2)})}};

struct UpdateCase {
    const char* name;
    std::string line;
    FakeReplies replies;  // other than those above
    int status;
    std::string shown;          // on one of the two outputs
    std::string asked = {};     // the beginning of a request
    std::string notAsked = {};  // likewise
};

const UpdateCase kUpdateCases[] = {
    {"updates_failed_download", "updates", kFailedBefore, 0, "download failed: no space"},
    {"updates_there", "updates --exit-code", kIsDownloaded, 10, "is downloaded"},
    {"updates_none", "updates --exit-code", kUpToDate, 0, "up to date"},
    {"updates_under_way", "updates --exit-code", kIsUpdating, 0, "is under way"},
    {"updates_not_known", "updates --exit-code", kCheckFailed, 1, "the check failed"},

    {"download", "download device_pack", kAsAbove, 0, "DP 2.2-1 is downloaded\n",
     R"(DownloadStart Bearer secret {"service":1})"},
    {"download_joins", "download 1", With(4), 0, "is downloaded", "", "DownloadStart"},
    {"download_is_there", "download 1", kIsDownloaded, 0, "is downloaded", "", "DownloadStart"},
    {"download_nothing_newer", "download 1", kUpToDate, 0, "no newer release of DP", "", "DownloadStart"},
    {"download_during_update", "download 1", kIsUpdating, 5, "an update is under way"},
    {"download_unknown", "download 1", kCheckFailed, 1, "the check failed"},
    {"download_fails", "download 1", With(Progress(4), Downloads(4, "wrong \x1B hash")), 1,
     "The download of DP failed: wrong \\x1B hash\nThe request was r1\n"},
    {"download_after_a_failure", "download 1", kFailedBefore, 0, "DP 2.2-1 is downloaded\n", "DownloadStart"},
    {"download_ended_by_others", "download 1", With(Progress(4)), 1, "was cancelled, or never began"},
    {"download_too_slow", "download 1 --timeout 1", With(Progress(1)), 8,
     "the appliance goes on downloading"},
    {"cancel", "cancel 1", kAsAbove, 0, "No download of DP is under way now\n", "DownloadCancel"},
    {"cancel_too_late", "cancel 1", With(Progress(2), Downloads(2)), 0, "2.2-1 was downloaded before"},

    {"update", "update 1 --yes", kAsAbove, 0,
     "DP 2.2-1 is installed, in place of 2.1-9\nRunning as before: DP\n",
     R"(Update Bearer secret {"service":1})"},
    {"update_dry", "update 1 -n", kAsAbove, 0, "To install       2.2-1 (newer)\n", "", "DownloadStart"},
    {"update_nobody_to_ask", "update 1", kAsAbove, 2, "There is nobody to ask", "", "CheckUpdateInfo"},
    {"update_nothing_newer", "update 1 --yes", kUpToDate, 0, "no newer release", "", "Update"},
    {"update_of_another_release", "update 1 --yes", With(Progress(2, "2.3-1")), 9,
     "DP 2.2-1 was to be downloaded, but 2.3-1 was; nothing was installed", "", "Update"},

    {"auto_update_has_no_effect", "auto-update 1 on", kAsAbove, 9, "is off",
     R"(SetAutoUpdate Bearer secret {"blEnable":true,"service":1})"},
    {"auto_update_wrong_word", "auto-update 1 yes", kAsAbove, 2, "neither \"on\" nor \"off\"", "",
     "SetAutoUpdate"},

    {"restore_tells_of_failed_scripts", "restore 1 --yes", kAsAbove, 0,
     "Warning: /s/restore ended with exit status 3",
     R"(Restore Bearer secret {"description":"restored by camvoractl","service":1,"serviceName":"DP"})"},
    {"restore_dry", "restore 1 -n", kAsAbove, 0, "Factory copy     its version is not known here\n", "",
     "Restore"},
    {"restore_nobody_to_ask", "restore 1", kAsAbove, 2, "There is nobody to ask", "", "List"},
    {"restore_without_copy", "restore 1 --yes", FakeReplies{{"GetInfo", Success("{}")}}, 3,
     "DP has no factory copy", "", "Restore"},
};

class UpdateTest : public testing::TestWithParam<UpdateCase> {};

TEST_P(UpdateTest, DoesAndSays) {
    FakeReplies replies = Replies();
    for (const auto& [request, reply] : GetParam().replies) {
        replies[request] = reply;
    }
    FakeAppliance appliance(replies);
    const Outcome outcome = appliance.Run(GetParam().line);
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_NE(std::string::npos, (outcome.err + outcome.out).find(GetParam().shown))
        << outcome.err << outcome.out;
    EXPECT_TRUE(GetParam().asked.empty() || appliance.IsAsked(GetParam().asked));
    EXPECT_FALSE(!GetParam().notAsked.empty() && appliance.IsAsked(GetParam().notAsked));
}

INSTANTIATE_TEST_SUITE_P(All, UpdateTest, testing::ValuesIn(kUpdateCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST(RestoreTest, ComparesWithTheFactoryCopyInTheFolder) {
    const FakeAppliance appliance(Replies());
    const std::filesystem::path copy = appliance.Dir() + "/var/packages/Camvora/target/device_pack.default";
    std::filesystem::create_directory(copy);
    std::ofstream(copy / "conf") << "version=\"2.0-1\"\n";
    const Outcome outcome = appliance.Run("restore 1 --yes");
    EXPECT_EQ(9, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find("Factory copy     2.0-1\n")) << outcome.err;
}

TEST(DownloadTest, IsCancelledByAnInterruptAndLeftByASecondOne) {
    for (const bool isAnswered : {true, false}) {
        FakeReplies replies = Replies();
        replies["DownloadProgress"] = Progress(1);
        replies["DownloadCancel"] = isAnswered ? Success("null") : FakeReply{200, " ", "", true};
        FakeAppliance appliance(replies);
        const Program run = appliance.Start("download 1");
        appliance.AwaitRequest("DownloadProgress");
        kill(run.Pid(), SIGINT);
        appliance.AwaitRequest("DownloadCancel");
        if (!isAnswered) {
            kill(run.Pid(), SIGINT);
        }
        const Outcome outcome = run.Wait();
        EXPECT_EQ(130, outcome.status);
        const char* words =
            isAnswered ? "Interrupted; the download of DP is cancelled\n" : "may go on downloading";
        EXPECT_NE(std::string::npos, outcome.err.find(words)) << outcome.err;
    }
}

TEST(TransferRateTest, LooksBackOverTheLastSeconds) {
    constexpr std::uint64_t kMiB = 1024 * 1024;
    client::TransferRate rate;
    client::TransferRate::Clock::time_point time;
    rate.Add(time, 0);
    EXPECT_EQ("", rate.Words(100 * kMiB)) << "nothing is known yet";
    std::uint64_t bytes = 0;
    for (int second = 1; second <= 20; ++second) {
        bytes += second <= 10 ? kMiB : kMiB / 2;
        rate.Add(time += std::chrono::seconds(1), bytes);
    }
    EXPECT_EQ("512.0 KiB/s, 90 s left", rate.Words(60 * kMiB));
    EXPECT_EQ("512.0 KiB/s, 3 min left", rate.Words(105 * kMiB));
    rate.Add(time, 0);
    EXPECT_EQ("", rate.Words(kMiB)) << "it began anew";
}

}  // namespace
