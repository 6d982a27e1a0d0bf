// "install": the plan, the question, and what is said of what was seen.
#include "support/packages.h"

#include "commandcase.h"

#include <csignal>
#include <map>

namespace {

using testing::EndsWith;
using testing::HasSubstr;

std::string Entry(int number, const std::string& name, bool isRunning) {
    return R"({"service":)" + std::to_string(number) + R"(,"info":{"shortName":")" + name +
           R"(","name":"The )" + name + R"(","blRunning":)" + (isRunning ? "true}}" : "false}}");
}

FakeReply List(bool isDevicePackRunning, bool isDisplayRunning) {
    return Success(R"({"list":[)" + Entry(1, "device_pack", isDevicePackRunning) + "," +
                   Entry(6, "local_display", isDisplayRunning) + "]}");
}

FakeReply Installed(const std::string& version) {
    return Success(R"({"version":")" + version + "\"}");
}

FakeReply Programs(const std::string& programs) {
    return Success(R"({"programs":[)" + programs + "]}");
}

const FakeReply kOldThenNew = InTurn({Installed("2.1-9"), Installed("2.2-1")});
const FakeReply kAllRun = List(true, true);

constexpr char kOldRuns[] =
    R"({"request":"u","path":"/bin/sleep","arguments":[],"durationMs":60000},)"
    R"({"request":"v","path":"/bin/tar","arguments":[],"durationMs":9000},)"
    R"({"request":"v","path":"/s/S82camvora.sh","arguments":["stop"],"durationMs":2400},)"
    R"({"request":"v","path":"/bin/mv","arguments":["-f","/w/device_pack",)"
    R"("/var/packages/Camvora/target/device_pack"],"durationMs":1100})";
constexpr char kRuns[] = R"({"path":"/d/script/preinst","arguments":[],"exitStatus":-2},)"
                         R"({"path":"/bin/mv","arguments":["-f","\u001b"],"exitStatus":1},)"
                         R"({"path":"/bin/rm","arguments":[],"exitStatus":0},)"
                         R"({"path":"/d/script/postinst","arguments":[],"exitStatus":-1})";

const std::string kSent = "Sending x.spk\nThe appliance unpacks and checks it\n";
const std::string kPlan =
    "Add-on           The device_pack\n"
    "Maintainer       Me\n"
    "Installed        2.1-9\n"
    "To install       2.2-1 (newer)\n"
    "Stops meanwhile  all of Camvora; running now: The device_pack, The local_display\n"
    "Takes about      4 seconds, as the last time\n";
const std::string kInstalls = "The appliance installs The device_pack 2.2-1\n";
const std::string kLooks = "Looking at what is installed and runs\n";
const std::string kWarnings =
    "Warning: /bin/mv -f \\x1B ended with exit status 1\n"
    "Warning: /d/script/postinst could not be run or did not end by itself\n";
const std::string kWhy = "The request was r1\nThe appliance logged:\nT  s:9  F  why\n";

FakeReplies Replies() {
    return {
        {"List", kAllRun},
        {"GetInfo", kOldThenNew},
        {"Upload", Success(R"({"pkgInfo":{}})")},
        {"GetPkgInfo", Success(R"({"version":"2.2-1","maintainer":"Me","filePath":"/w/"})")},
        {"GET /programs", Programs(kOldRuns)},
        {"GET /programs?request=r1", Programs(kRuns)},
        {kLog, Success(R"({"lines":[{"time":"T","source":"s","line":9,"function":"F","text":"why"}]})")},
    };
}

class InstallTest : public testing::Test {
protected:
    InstallTest() { dir_.Write("x.spk", MakeDevicePack()); }

    std::string Line(const std::string& options) const { return "install " + file_ + " " + options; }

    TemporaryFolder dir_;
    const std::string file_ = dir_.PathOf("x.spk");
};

TEST_F(InstallTest, SendsShowsThePlanInstallsAndLooks) {
    FakeReplies replies = Replies();
    replies["List"] = InTurn({kAllRun, kAllRun, List(true, false), kAllRun, List(false, true), kAllRun});
    FakeAppliance appliance(replies);
    const Outcome outcome = appliance.Run(Line("--yes"));
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(kSent + kPlan + kInstalls + kLooks + kWarnings, outcome.err);
    EXPECT_EQ(
        "The device_pack 2.2-1 is installed, in place of 2.1-9\n"
        "Running as before: The device_pack, The local_display\n",
        outcome.out);
    EXPECT_THAT(appliance.Requests(), Asks(R"(Update Bearer secret {"filePath":"/w/","service":1})"));
}

TEST_F(InstallTest, ShowsThePlanAndSendsNothing) {
    const std::map<std::string, std::string> plans = {
        {"2.10-1", "\nTo install       2.2-1 (older: a downgrade)\n"},
        {"2.2-1", "\nTo install       2.2-1 (the same version again)\n"},
        {"", "\nInstalled        -\nTo install       2.2-1 (nothing is installed now)\n"},
    };
    for (const auto& [installed, plan] : plans) {
        FakeReplies replies = Replies();
        replies["GetInfo"] = Installed(installed);
        FakeAppliance appliance(replies);
        EXPECT_THAT(appliance.Run(Line("-n")).out, HasSubstr(plan));
        EXPECT_THAT(appliance.Requests(), AsksNo("Upload"));
    }
}

FakeReplies With(const std::string& request, const FakeReply& reply) {
    FakeReplies replies = Replies();
    replies[request] = reply;
    return replies;
}

constexpr char kLine[] = "install " SAMPLES "/device_pack-2.2.0-0140.spk --yes --timeout 5";

const CommandCase kFailedCases[] = {
    {"refused", kLine,
     With("GetPkgInfo", Error(200, R"({"code":400,"data":{"errinfo":{"sec":"device_pack"}}})")), 4, "",
     EndsWith("device_pack/\nerrinfo.sec  device_pack\n" + kWhy)},
    {"nowhere_unpacked", kLine, With("GetPkgInfo", Success(R"({"version":"2.2-1","filePath":""})")), 1, "",
     EndsWith("checks it\ncamvoractl: GetPkgInfo failed: the answer names no unpacked package\n")},
    {"update_failed", kLine, With("Update", Error(200, R"({"code":400,"data":null})")), 1, "",
     EndsWith(kInstalls + kWarnings + "Installed now: 2.2-1\n" +
              "camvoractl: Update failed (error 400): the appliance could not do it\n" + kWhy)},
    {"another_version_is_there", kLine, With("GetInfo", Installed("2.1-9")), 9, "",
     EndsWith(kLooks + kWarnings +
              "camvoractl: The device_pack 2.2-1 was to be installed, but 2.1-9 is there\n" + kWhy)},
    {"a_service_stays_away", kLine, With("List", InTurn({kAllRun, kAllRun, kAllRun, List(true, false)})), 9,
     "",
     EndsWith(kLooks + kWarnings +
              "camvoractl: The device_pack 2.2-1 is installed, but this does not run as before: "
              "The local_display\n" +
              kWhy)},
};

INSTANTIATE_TEST_SUITE_P(Install, CommandTest, testing::ValuesIn(kFailedCases), NameOf);

TEST_F(InstallTest, AsksNothingOfTheApplianceInVain) {
    FakeAppliance appliance(Replies());
    EXPECT_EQ(2, appliance.Run(Line("")).status) << "there is nobody to ask";
    dir_.Write("x.spk", MakeDevicePack({{"device_pack/a", "", '2', "/etc"}}));
    EXPECT_EQ(4, appliance.Run(Line("--yes")).status);
    EXPECT_EQ(0U, appliance.Requests().size());
}

TEST_F(InstallTest, AsksAtATerminal) {
    for (const bool isAgreed : {true, false}) {
        FakeAppliance appliance(Replies());
        const Outcome outcome = appliance.RunAtTerminal(Line(""), isAgreed ? "y\n" : "\n\n");
        EXPECT_EQ(isAgreed ? 0 : 1, outcome.status);
        EXPECT_THAT(appliance.Requests(), isAgreed ? Asks("Update") : AsksNo("Update"));
        EXPECT_THAT(outcome.out, HasSubstr("Install it? [y/N] "));
    }
}

TEST_F(InstallTest, SaysThatTheApplianceGoesOnWhenItIsInterrupted) {
    FakeReplies replies = Replies();
    replies["Update"] = {200, " ", "", true};
    FakeAppliance appliance(replies);
    const Program run = appliance.Start(Line("--yes"));
    appliance.AwaitRequest("Update");
    kill(run.Pid(), SIGINT);
    const Outcome outcome = run.Wait();
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ(kSent + kPlan + kInstalls +
                  "camvoractl: Interrupted\n"
                  "The appliance goes on installing; \"camvoractl list\" shows what has come of it\n",
              outcome.err);
}

}  // namespace
