// "install": the plan, the question, and what is said of what was seen.
#include "support/packages.h"

#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace {

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

class InstallTest : public testing::Test {
protected:
    InstallTest() { dir_.Write("x.spk", MakeDevicePack()); }

    static FakeReplies Replies() {
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
    EXPECT_TRUE(appliance.IsAsked(R"(Update Bearer secret {"filePath":"/w/","service":1})"));
}

struct DryCase {
    const char* name;
    const char* installed;
    const char* words;
    const char* info = kDevicePackInfo;
    FakeReply list = kAllRun;
};

const DryCase kDryCases[] = {
    {"downgrade", "2.10-1", "\nTo install       2.2-1 (older: a downgrade)\n"},
    {"the_same", "2.2-1", "\nTo install       2.2-1 (the same version again)\n"},
    {"first", "", "\nInstalled        -\nTo install       2.2-1 (nothing is installed now)\n"},
    {"stops_nothing", "1", "\nStops meanwhile  nothing\n", kLocalDisplayInfo, List(true, false)},
};

class InstallDryTest : public InstallTest, public testing::WithParamInterface<DryCase> {};

TEST_P(InstallDryTest, ShowsThePlanAndSendsNothing) {
    const std::string folder = GetParam().info == kDevicePackInfo ? "device_pack/" : "";
    dir_.Write("x.spk", MakePackage(GetParam().info, {{folder + "conf", kGoodConf}}));
    FakeReplies replies = Replies();
    replies["List"] = GetParam().list;
    replies["GetInfo"] = Installed(GetParam().installed);
    FakeAppliance appliance(replies);
    const Outcome outcome = appliance.Run(Line("-n"));
    EXPECT_EQ(0, outcome.status) << outcome.err;
    EXPECT_NE(std::string::npos, outcome.out.find(GetParam().words)) << outcome.out;
    EXPECT_FALSE(appliance.IsAsked("Upload"));
}

INSTANTIATE_TEST_SUITE_P(All, InstallDryTest, testing::ValuesIn(kDryCases),
                         [](const auto& c) { return std::string(c.param.name); });

struct FailedCase {
    const char* name;
    const char* request;
    FakeReply reply;
    int status;
    std::string errTail;
};

const FailedCase kFailedCases[] = {
    {"refused", "GetPkgInfo", Error(200, R"({"code":400,"data":{"errinfo":{"sec":"device_pack"}}})"), 4,
     "The appliance does not take x.spk: device_pack/\nerrinfo.sec  device_pack\n" + kWhy},
    {"nowhere_unpacked", "GetPkgInfo", Success(R"({"version":"2.2-1","filePath":""})"), 1,
     kSent + "camvoractl: GetPkgInfo failed: the answer names no unpacked package\n"},
    {"update_failed", "Update", Error(200, R"({"code":400,"data":null})"), 1,
     kInstalls + kWarnings + "Installed now: 2.2-1\n" +
         "camvoractl: Update failed (error 400): the appliance could not do it\n" + kWhy},
    {"another_version_is_there", "GetInfo", Installed("2.1-9"), 9,
     kLooks + kWarnings + "camvoractl: The device_pack 2.2-1 was to be installed, but 2.1-9 is there\n" +
         kWhy},
    {"a_service_stays_away", "List", InTurn({kAllRun, kAllRun, kAllRun, List(true, false)}), 9,
     kLooks + kWarnings +
         "camvoractl: The device_pack 2.2-1 is installed, but this does not run as before: "
         "The local_display\n" +
         kWhy},
};

class InstallFailedTest : public InstallTest, public testing::WithParamInterface<FailedCase> {};

TEST_P(InstallFailedTest, SaysWhatWasSeen) {
    FakeReplies replies = Replies();
    replies[GetParam().request] = GetParam().reply;
    const FakeAppliance appliance(replies);
    const Outcome outcome = appliance.Run(Line("--yes --timeout 5"));
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ("", outcome.out);
    const std::size_t tailSize = std::min(outcome.err.size(), GetParam().errTail.size());
    EXPECT_EQ(GetParam().errTail, outcome.err.substr(outcome.err.size() - tailSize));
}

INSTANTIATE_TEST_SUITE_P(All, InstallFailedTest, testing::ValuesIn(kFailedCases),
                         [](const auto& c) { return std::string(c.param.name); });

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
        EXPECT_EQ(isAgreed, appliance.IsAsked("Update"));
        EXPECT_NE(std::string::npos, outcome.out.find("Install it? [y/N] ")) << outcome.out;
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
