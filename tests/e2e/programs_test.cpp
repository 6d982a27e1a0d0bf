// Programs and scripts that handlers run: how each ended can be looked up, and none outlives its request.
#include "e2e/appliance.h"
#include "e2e/processes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace e2e {
namespace {

namespace fs = std::filesystem;

Answer Exec(HttpCalls calls, const std::string& path, const std::vector<std::string>& arguments) {
    Json::Value params = Param("path", path);
    for (const std::string& argument : arguments) {
        params["arguments"].append(argument);
    }
    return calls.Test("Exec", params);
}

bool IsAnyAsleep(const Appliance& appliance) {
    return !Descendants(appliance.Supervisor(), [](pid_t pid) { return NameOf(pid) == "sleep"; }).empty();
}

class ProgramsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>(Appliance::WithTestModule({"--request-time", "2"}));
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    static Answer Exec(const std::string& path, const std::vector<std::string>& arguments) {
        return e2e::Exec(appliance_->Owner(), path, arguments);
    }
    Json::Value ProgramsOf(const Answer& answer) {
        return owner_.Get("/programs?request=" + answer.requestId).Data()["programs"];
    }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> ProgramsTest::appliance_;

TEST_F(ProgramsTest, AreRecordedWithTheirRequest) {
    const Answer failed = Exec("/bin/sh", {"-c", "echo printed; test \"$CAMVORA_REQUEST_ID\" && exit 7", ""});
    EXPECT_EQ(7, failed.Data()["exitStatus"].asInt());
    const Answer missing = Exec("/bin/none", {});
    EXPECT_EQ(-1, missing.Data()["exitStatus"].asInt());
    const Json::Value programs = ProgramsOf(failed);
    ASSERT_EQ(1U, programs.size());
    EXPECT_EQ("/bin/sh", programs[0]["path"].asString());
    ASSERT_EQ(3U, programs[0]["arguments"].size());
    EXPECT_EQ("-c", programs[0]["arguments"][0].asString());
    EXPECT_EQ("", programs[0]["arguments"][2].asString());
    EXPECT_EQ(7, programs[0]["exitStatus"].asInt());
    EXPECT_EQ(failed.requestId, programs[0]["request"].asString());
    EXPECT_GT(programs[0]["peakMemoryKiB"].asInt(), 0);
    EXPECT_EQ(-2, ProgramsOf(missing)[0]["exitStatus"].asInt()) << "there is none";
    EXPECT_EQ(0U, ProgramsOf(missing)[0]["arguments"].size());
    const Json::Value all = owner_.Get("/programs").Data()["programs"];
    EXPECT_EQ(missing.requestId, all[all.size() - 1]["request"].asString());
    EXPECT_EQ(failed.requestId, all[all.size() - 2]["request"].asString());
    EXPECT_EQ(401, appliance_->Stranger().Get("/programs?request=" + failed.requestId).status);
    EXPECT_NE(std::string::npos,
              ReadFile(appliance_->PackagePath("target/@CVData/log/programs.log")).find("printed\n"));
}

TEST_F(ProgramsTest, EndWithTheirRequest) {
    const auto call = std::async(std::launch::async, [] {
        return Exec("/bin/sh", {"-c", "trap '' TERM; sleep 1000 & sleep 1000"}).Code();
    });
    EXPECT_TRUE(WaitUntil([] { return IsAnyAsleep(*appliance_); }));
    call.wait();
    EXPECT_TRUE(WaitUntil([] { return !IsAnyAsleep(*appliance_); }));
}

TEST_F(ProgramsTest, TarIsAllOrNothing) {
    const fs::path folder = appliance_->PackagePath("target/work");
    fs::create_directories(folder);
    std::ofstream(folder / "INFO") << "text";
    EXPECT_EQ(0, Exec("/bin/tar", {"-czf", "/tmp/a.tgz", "/var/packages/Camvora/target/device_pack"})
                     .Data()["exitStatus"]
                     .asInt());
    const std::vector<std::string> unpack = {"-C", "/var/packages/Camvora/target/work/", "-xvf",
                                             "/tmp/a.tgz"};
    EXPECT_EQ(0, Exec("/bin/sh", {"-c", "head -c 100 /tmp/a.tgz >/tmp/b.tgz"}).Data()["exitStatus"].asInt());
    std::vector<std::string> unpackCut = unpack;
    unpackCut.back() = "/tmp/b.tgz";
    EXPECT_NE(0, Exec("/bin/tar", unpackCut).Data()["exitStatus"].asInt());
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    const Answer whole = Exec("/bin/tar", unpack);
    EXPECT_EQ(0, whole.Data()["exitStatus"].asInt());
    EXPECT_TRUE(fs::exists(folder / "var/packages/Camvora/target/device_pack/conf"));
    EXPECT_EQ(2, std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    EXPECT_EQ(unpack[1], ProgramsOf(whole)[0]["arguments"][1].asString()) << "as the caller gave it";
}

constexpr char kTarget[] = "/var/packages/Camvora/target/";

class ScriptsTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(Appliance::WithTestModule()); }

    static int Run(const std::string& script, const std::vector<std::string>& arguments = {}) {
        return Exec(appliance_->Owner(), kTarget + script, arguments).Data()["exitStatus"].asInt();
    }
    void SetDaemon(int type, bool start) {
        Json::Value params = Param("type", type);
        params["blStart"] = start;
        EXPECT_TRUE(owner_.Test("Daemon", params).Data().asBool()) << type;
    }
    static std::vector<pid_t> Daemons() {
        return Descendants(appliance_->Supervisor(),
                           [](pid_t pid) { return IsAlive(pid) && NameOf(pid) == "camvora-daemon"; });
    }
    static bool IsPackageStarted() {
        return fs::exists(appliance_->PackagePath("target/@CVData/run/started"));
    }
    static void MakeScript(const std::string& name, const std::string& commands) {
        const fs::path path = appliance_->PackagePath("target/" + name);
        std::ofstream(path) << "#!/bin/sh\n" << commands << "\n";
        fs::permissions(path, fs::perms::owner_exec, fs::perm_options::add);
    }

    // What the Device Pack's scripts have left, without the times.
    static std::vector<std::string> Trace() {
        std::ifstream log(appliance_->PackagePath("target/@CVData/log/device_pack_scripts.log"));
        std::vector<std::string> lines;
        for (std::string number, time, script, version; log >> number >> time >> script >> version;) {
            lines.push_back(number + " " + script + " " + version);
        }
        return lines;
    }
};

TEST_F(ScriptsTest, ThePackageComesBackAsItWasStopped) {
    const std::string script = "scripts/S82camvora.sh";
    for (const int type : {1, 6, 11}) {
        SetDaemon(type, true);
    }
    const std::vector<pid_t> stopped = Daemons();
    EXPECT_EQ(4U, stopped.size()) << "one has a helper";
    for (int times = 0; times < 2; ++times) {  // the second one forgets nothing
        EXPECT_EQ(0, Run(script, {"stop"}));
        EXPECT_TRUE(Daemons().empty());
        EXPECT_FALSE(IsPackageStarted());
        EXPECT_EQ(200, owner_.Get("/health").status);
    }
    SetDaemon(11, false);
    EXPECT_EQ(0, Run(script, {"start"}));
    EXPECT_TRUE(IsPackageStarted());
    const std::vector<pid_t> started = Daemons();
    EXPECT_EQ(2U, started.size());
    EXPECT_EQ(stopped.end(),
              std::find_first_of(stopped.begin(), stopped.end(), started.begin(), started.end()));
    SetDaemon(1, false);
    EXPECT_EQ(0, Run(script, {"start"}));
    EXPECT_EQ(1U, Daemons().size()) << "only what a stop has ended comes back";
    EXPECT_EQ(2, Run(script));
}

TEST_F(ScriptsTest, ThoseOfTheInstalledAddOnLeaveATrace) {
    for (const char* script : {"preupgrade", "preinst", "postinst", "postupgrade"}) {
        EXPECT_EQ(0, Run(std::string("device_pack/script/") + script));
    }
    EXPECT_EQ((std::vector<std::string>{"1 preupgrade 2.1.0-0130", "2 preinst 2.1.0-0130",
                                        "3 postinst 2.1.0-0130", "4 postupgrade 2.1.0-0130"}),
              Trace());
}

TEST_F(ScriptsTest, AreEndedAtTheLimitOfTheAppliance) {
    const fs::path limits = appliance_->PackagePath("target/etc/programs.conf");
    const std::string before = ReadFile(limits);
    std::ofstream(limits) << "time_limit_s=\"1\"\n";
    MakeScript("scripts/hang", "trap '' TERM; sleep infinity & sleep infinity");
    EXPECT_EQ(-1, Run("scripts/hang"));
    EXPECT_FALSE(IsAnyAsleep(*appliance_));
    std::ofstream(limits) << before;
}

TEST_F(ScriptsTest, OneThatIsUnderWayEndsBeforeTheAppliance) {
    MakeScript("scripts/linger", "sleep 2");
    auto run = std::async(std::launch::async, [] { return Run("scripts/linger"); });
    EXPECT_TRUE(WaitUntil([] { return IsAnyAsleep(*appliance_); }));
    appliance_->Stop();
    EXPECT_EQ(0, run.get());
    appliance_->Launch(Appliance::WithTestModule());
}

}  // namespace
}  // namespace e2e
