// Programs and scripts that handlers run: how each ended can be looked up, and none outlives its request.
#include "e2e/appliance.h"
#include "e2e/processes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
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

class ProgramsTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(Appliance::WithTestModule({"--request-time", "2"})); }

    static Answer Exec(const std::string& path, const std::vector<std::string>& arguments) {
        return e2e::Exec(appliance_->Owner(), path, arguments);
    }
    Json::Value ProgramsOf(const Answer& answer) {
        return owner_.Get("/programs?request=" + answer.requestId).Data()["programs"];
    }
};

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
    EXPECT_EQ(7, programs[0]["exitStatus"].asInt());
    EXPECT_EQ(failed.requestId, programs[0]["request"].asString());
    EXPECT_GT(programs[0]["peakMemoryKiB"].asInt(), 0);
    EXPECT_EQ(-2, ProgramsOf(missing)[0]["exitStatus"].asInt()) << "there is none";
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
    static bool IsPackageStarted() {
        return fs::exists(appliance_->PackagePath("target/@CVData/run/started"));
    }
    static void MakeScript(const std::string& name, const std::string& commands) {
        const fs::path path = appliance_->PackagePath("target/" + name);
        std::ofstream(path) << "#!/bin/sh\n" << commands << "\n";
        fs::permissions(path, fs::perms::owner_exec, fs::perm_options::add);
    }
};

TEST_F(ScriptsTest, ThePackageComesBackAsItWasStopped) {
    const std::string script = "scripts/S82camvora.sh";
    for (const int type : {1, 6, 11}) {
        SetDaemon(type, true);
    }
    const std::vector<pid_t> stopped = appliance_->Daemons();
    EXPECT_EQ(4U, stopped.size()) << "one has a helper";
    for (int times = 0; times < 2; ++times) {  // the second one forgets nothing
        EXPECT_EQ(0, Run(script, {"stop"}));
        EXPECT_TRUE(appliance_->Daemons().empty());
        EXPECT_FALSE(IsPackageStarted());
        EXPECT_EQ(200, owner_.Get("/health").status);
    }
    SetDaemon(11, false);
    EXPECT_EQ(0, Run(script, {"start"}));
    EXPECT_TRUE(IsPackageStarted());
    const std::vector<pid_t> started = appliance_->Daemons();
    EXPECT_EQ(2U, started.size());
    EXPECT_EQ(stopped.end(),
              std::find_first_of(stopped.begin(), stopped.end(), started.begin(), started.end()));
    SetDaemon(1, false);
    EXPECT_EQ(0, Run(script, {"start"}));
    EXPECT_EQ(1U, appliance_->Daemons().size()) << "only what a stop has ended comes back";
    EXPECT_EQ(2, Run(script));
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
