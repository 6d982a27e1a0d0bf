// "updates", "download", "cancel", "update", "auto-update" and "restore": what they ask for, and what they
// say of what was seen.
#include "client/transferrate.h"

#include "commandcase.h"

#include <csignal>
#include <filesystem>
#include <fstream>

namespace {

using testing::_;
using testing::EndsWith;
using testing::HasSubstr;

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

FakeReplies With(const FakeReplies& others) {
    FakeReplies replies = Replies();
    for (const auto& [request, reply] : others) {
        replies[request] = reply;
    }
    return replies;
}

FakeReplies With(int state) {
    return With({{"CheckUpdateInfo", State(state)}});
}

FakeReplies With(const FakeReply& progress, const FakeReply& downloads = Success(R"({"downloads":[]})")) {
    return With({{"DownloadProgress", progress}, {"GET /downloads", downloads}});
}

const FakeReplies kUsual = Replies();
const FakeReplies kUpToDate = With(1);
const FakeReplies kIsDownloaded = With({{"CheckUpdateInfo", State(3)}, {"DownloadProgress", Progress(2)}});
const FakeReplies kIsUpdating = With(6);
const FakeReplies kCheckFailed = With(7);
const FakeReplies kFailedBefore =
    With({{"CheckUpdateInfo", State(5)},
          {"GET /downloads", Downloads(4, "no space")},
          {"DownloadProgress", InTurn({Progress(4), Progress(1), Progress(2)})}});

const CommandCase kUpdateCases[] = {
    {"updates_failed_download", "updates", kFailedBefore, 0, HasSubstr("download failed: no space"), _},
    {"updates_there", "updates --exit-code", kIsDownloaded, 10, HasSubstr("is downloaded"), _},
    {"updates_none", "updates --exit-code", kUpToDate, 0, HasSubstr("up to date"), _},
    {"updates_under_way", "updates --exit-code", kIsUpdating, 0, HasSubstr("is under way"), _},
    {"updates_not_known", "updates --exit-code", kCheckFailed, 1, HasSubstr("the check failed"), _},

    {"download", "download device_pack", kUsual, 0, "DP 2.2-1 is downloaded\n", _,
     Asks(R"(DownloadStart Bearer secret {"service":1})")},
    {"download_joins", "download 1", With(4), 0, HasSubstr("is downloaded"), _, AsksNo("DownloadStart")},
    {"download_is_there", "download 1", kIsDownloaded, 0, HasSubstr("is downloaded"), _,
     AsksNo("DownloadStart")},
    {"download_nothing_newer", "download 1", kUpToDate, 0, HasSubstr("no newer release of DP"), _,
     AsksNo("DownloadStart")},
    {"download_during_update", "download 1", kIsUpdating, 5, "", HasSubstr("an update is under way")},
    {"download_unknown", "download 1", kCheckFailed, 1, "", HasSubstr("the check failed")},
    {"download_fails", "download 1", With(Progress(4), Downloads(4, "wrong \x1B hash")), 1, "",
     EndsWith("The download of DP failed: wrong \\x1B hash\nThe request was r1\n")},
    {"download_after_a_failure", "download 1", kFailedBefore, 0, "DP 2.2-1 is downloaded\n", _,
     Asks("DownloadStart")},
    {"download_ended_by_others", "download 1", With(Progress(4)), 1, "",
     HasSubstr("was cancelled, or never began")},
    {"download_too_slow", "download 1 --timeout 1", With(Progress(1)), 8, "",
     HasSubstr("the appliance goes on downloading")},
    {"cancel", "cancel 1", kUsual, 0, "No download of DP is under way now\n", _, Asks("DownloadCancel")},
    {"cancel_too_late", "cancel 1", With(Progress(2), Downloads(2)), 0,
     HasSubstr("2.2-1 was downloaded before"), _},

    {"update", "update 1 --yes", kUsual, 0,
     "DP 2.2-1 is installed, in place of 2.1-9\nRunning as before: DP\n", _,
     Asks(R"(Update Bearer secret {"service":1})")},
    {"update_dry", "update 1 -n", kUsual, 0, HasSubstr("To install       2.2-1 (newer)\n"), _,
     AsksNo("DownloadStart")},
    {"update_nobody_to_ask", "update 1", kUsual, 2, "", HasSubstr("There is nobody to ask"),
     AsksNo("CheckUpdateInfo")},
    {"update_nothing_newer", "update 1 --yes", kUpToDate, 0, HasSubstr("no newer release"), _,
     AsksNo("Update")},
    {"update_of_another_release", "update 1 --yes", With(Progress(2, "2.3-1")), 9, "",
     HasSubstr("DP 2.2-1 was to be downloaded, but 2.3-1 was; nothing was installed"), AsksNo("Update")},

    {"auto_update_has_no_effect", "auto-update 1 on", kUsual, 9, "", HasSubstr("is off"),
     Asks(R"(SetAutoUpdate Bearer secret {"blEnable":true,"service":1})")},
    {"auto_update_wrong_word", "auto-update 1 yes", kUsual, 2, "", HasSubstr("neither \"on\" nor \"off\""),
     AsksNo("SetAutoUpdate")},

    {"restore_tells_of_failed_scripts", "restore 1 --yes", kUsual, 0, _,
     HasSubstr("Warning: /s/restore ended with exit status 3"),
     Asks(
         R"(Restore Bearer secret {"description":"restored by camvoractl","service":1,"serviceName":"DP"})")},
    {"restore_dry", "restore 1 -n", kUsual, 0, HasSubstr("Factory copy     its version is not known here\n"),
     _, AsksNo("Restore")},
    {"restore_nobody_to_ask", "restore 1", kUsual, 2, "", HasSubstr("There is nobody to ask"),
     AsksNo("List")},
    {"restore_without_copy", "restore 1 --yes", With({{"GetInfo", Success("{}")}}), 3, "",
     HasSubstr("DP has no factory copy"), AsksNo("Restore")},
};

INSTANTIATE_TEST_SUITE_P(Update, CommandTest, testing::ValuesIn(kUpdateCases), NameOf);

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
