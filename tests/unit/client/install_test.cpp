// "install": the plan, the question, and what is said of what was seen.
#include "support/packages.h"

#include "commandcase.h"

#include <csignal>
#include <map>

namespace {

using testing::EndsWith;
using testing::HasSubstr;

const FakeReply kAllRun = ServiceList(true, true);

const std::string kSent = "Sending x.spk\nThe appliance unpacks and checks it\n";
const std::string kPlan =
    "Add-on           DP\n"
    "Maintainer       Me\n"
    "Installed        2.1-9\n"
    "To install       2.2-1 (newer)\n"
    "Stops meanwhile  all of Camvora; running now: DP, LD\n"
    "Takes about      4 seconds, as the last time\n";
const std::string kInstalls = "The appliance installs DP 2.2-1\n";
const std::string kLooks = "Looking at what is installed and runs\n";
const std::string kWarnings =
    "Warning: /bin/mv -f \\x1B ended with exit status 1\n"
    "Warning: /d/script/postinst could not be run or did not end by itself\n";

class InstallTest : public testing::Test {
protected:
    InstallTest() { dir_.Write("x.spk", MakeDevicePack()); }

    std::string Line(const std::string& options) const { return "install " + file_ + " " + options; }

    TemporaryFolder dir_;
    const std::string file_ = dir_.PathOf("x.spk");
};

TEST_F(InstallTest, SendsShowsThePlanInstallsAndLooks) {
    FakeAppliance appliance(Usual({{"List", InTurn({kAllRun, kAllRun, ServiceList(true, false), kAllRun,
                                                    ServiceList(false, true), kAllRun})}}));
    const Outcome outcome = appliance.Run(Line("--yes"));
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(kSent + kPlan + kInstalls + kLooks + kWarnings, outcome.err);
    EXPECT_EQ(
        "DP 2.2-1 is installed, in place of 2.1-9\n"
        "Running as before: DP, LD\n",
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
        FakeAppliance appliance(Usual({{"GetInfo", Installed(installed)}}));
        EXPECT_THAT(appliance.Run(Line("-n")).out, HasSubstr(plan));
        EXPECT_THAT(appliance.Requests(), AsksNo("Upload"));
    }
}

constexpr char kLine[] = "install " SAMPLES "/device_pack-2.2.0-0140.spk --yes --timeout 5";

const CommandCase kFailedCases[] = {
    {"refused", kLine,
     Usual({{"GetPkgInfo", Error(200, R"({"code":400,"data":{"errinfo":{"sec":"device_pack"}}})")}}), 4, "",
     EndsWith("device_pack/\nerrinfo.sec  device_pack\n" + kWhy)},
    {"nowhere_unpacked", kLine, Usual({{"GetPkgInfo", Success(R"({"version":"2.2-1","filePath":""})")}}), 1,
     "", EndsWith("checks it\ncamvoractl: GetPkgInfo failed: the answer names no unpacked package\n")},
    {"update_failed", kLine, Usual({{"Update", Error(200, R"({"code":400,"data":null})")}}), 1, "",
     EndsWith(kInstalls + kWarnings + "Installed now: 2.2-1\n" +
              "camvoractl: Update failed (error 400): the appliance could not do it\n" + kWhy)},
    {"another_version_is_there", kLine, Usual({{"GetInfo", Installed("2.1-9")}}), 9, "",
     EndsWith(kLooks + kWarnings + "camvoractl: DP 2.2-1 was to be installed, but 2.1-9 is there\n" + kWhy)},
    {"a_service_stays_away", kLine,
     Usual({{"List", InTurn({kAllRun, kAllRun, kAllRun, ServiceList(true, false)})}}), 9, "",
     EndsWith(kLooks + kWarnings +
              "camvoractl: DP 2.2-1 is installed, but this does not run as before: "
              "LD\n" +
              kWhy)},
};

INSTANTIATE_TEST_SUITE_P(Install, CommandTest, testing::ValuesIn(kFailedCases), NameOf);

TEST_F(InstallTest, AsksNothingOfTheApplianceInVain) {
    FakeAppliance appliance(Usual());
    EXPECT_EQ(2, appliance.Run(Line("")).status) << "there is nobody to ask";
    dir_.Write("x.spk", MakeDevicePack({{"device_pack/a", "", '2', "/etc"}}));
    EXPECT_EQ(4, appliance.Run(Line("--yes")).status);
    EXPECT_EQ(0U, appliance.Requests().size());
}

TEST_F(InstallTest, AsksAtATerminal) {
    for (const bool isAgreed : {true, false}) {
        FakeAppliance appliance(Usual());
        const Outcome outcome = appliance.RunAtTerminal(Line(""), isAgreed ? "y\n" : "\n\n");
        EXPECT_EQ(isAgreed ? 0 : 1, outcome.status);
        EXPECT_THAT(appliance.Requests(), isAgreed ? Asks("Update") : AsksNo("Update"));
        EXPECT_THAT(outcome.out, HasSubstr("Install it? [y/N] "));
    }
}

TEST_F(InstallTest, SaysThatTheApplianceGoesOnWhenItIsInterrupted) {
    FakeAppliance appliance(Usual({{"Update", {200, " ", "", true}}}));
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
