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

FakeReply State(int status) {
    return Success("{\"status\":" + std::to_string(status) + "}");
}

FakeReply Downloads(int status, const std::string& problem = "") {
    return Success(R"({"downloads":[{"service":1,"version":"2.2-1","bytes":1,"size":4,"status":)" +
                   std::to_string(status) + R"(,"problem":")" + problem + "\"}]}");
}

FakeReplies With(int state) {
    return Usual({{"CheckUpdateInfo", State(state)}});
}

FakeReplies With(const FakeReply& progress, const FakeReply& downloads = Success(R"({"downloads":[]})")) {
    return Usual({{"DownloadProgress", progress}, {"GET /downloads", downloads}});
}

const FakeReplies kUsual = Usual();
const FakeReplies kUpToDate = With(1);
const FakeReplies kIsDownloaded = Usual({{"CheckUpdateInfo", State(3)}, {"DownloadProgress", Progress(2)}});
const FakeReplies kIsUpdating = With(6);
const FakeReplies kCheckFailed = With(7);
const FakeReplies kFailedBefore =
    Usual({{"CheckUpdateInfo", State(5)},
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
     EndsWith("The download of DP failed: wrong \\x1B hash\n" + kWhy)},
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
     "DP 2.2-1 is installed, in place of 2.1-9\nRunning as before: DP, LD\n", _,
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
     HasSubstr("Warning: /bin/mv -f \\x1B ended with exit status 1"),
     Asks(
         R"(Restore Bearer secret {"description":"restored by camvoractl","service":1,"serviceName":"DP"})")},
    {"restore_dry", "restore 1 -n", kUsual, 0, HasSubstr("Factory copy     its version is not known here\n"),
     _, AsksNo("Restore")},
    {"restore_of_what_does_not_run", "restore 6 -n", Usual({{"List", ServiceList(true, false)}}), 0,
     HasSubstr("Stops meanwhile  nothing\n"), _},
    {"restore_nobody_to_ask", "restore 1", kUsual, 2, "", HasSubstr("There is nobody to ask"),
     AsksNo("List")},
    {"restore_without_copy", "restore 1 --yes", Usual({{"GetInfo", Success("{}")}}), 3, "",
     HasSubstr("DP has no factory copy"), AsksNo("Restore")},
};

INSTANTIATE_TEST_SUITE_P(Update, CommandTest, testing::ValuesIn(kUpdateCases), NameOf);

TEST(RestoreTest, ComparesWithTheFactoryCopyInTheFolder) {
    const FakeAppliance appliance(Usual());
    const std::filesystem::path copy = appliance.Dir() + "/var/packages/Camvora/target/device_pack.default";
    std::filesystem::create_directory(copy);
    std::ofstream(copy / "conf") << "version=\"2.0-1\"\n";
    const Outcome outcome = appliance.Run("restore 1 --yes");
    EXPECT_EQ(9, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find("Factory copy     2.0-1\n")) << outcome.err;
}

TEST(DownloadTest, IsCancelledByAnInterruptAndLeftByASecondOne) {
    for (const bool isAnswered : {true, false}) {
        FakeAppliance appliance(
            Usual({{"DownloadProgress", Progress(1)},
                   {"DownloadCancel", isAnswered ? Success("null") : FakeReply{200, " ", "", true}}}));
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
