// The schedule of a real appliance.
#include "e2e/appliance.h"
#include "e2e/feed.h"
#include "e2e/processes.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <filesystem>
#include <fstream>
#include <set>

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr char kAutoUpdate[] = "/var/packages/Camvora/target/bin/auto-update";
constexpr char kCommand[] = "/var/packages/Camvora/target/command";

class ScheduleTest : public testing::Test {
protected:
    // The command tells of each of its runs, and does not end by itself.
    void SetUp() override {
        const fs::path command = appliance_.PackagePath("target/command");
        std::ofstream(command) << "#!/bin/sh\necho \"$*\" >>/var/packages/Camvora/target/runs\nsleep 600\n";
        fs::permissions(command, fs::perms::owner_all);
        fs::create_directories(appliance_.PackagePath("target/etc/cron.d"));
    }

    void WriteRule(const std::string& line) const {
        std::ofstream(appliance_.PackagePath("target/etc/cron.d/test")) << line << '\n';
    }

    // As if the line had been followed two days ago.
    void MissTwoDays(const std::string& line) const {
        SQLite::Database database(appliance_.PackagePath("target/@CVData/camvora.db"),
                                  SQLite::OPEN_READWRITE);
        SQLite::Statement record(
            database,
            "INSERT OR REPLACE INTO schedule VALUES(?, CAST(strftime('%s', 'now', '-2 days') AS INTEGER))");
        record.bind(1, line);
        record.exec();
    }

    std::string Runs() const { return ReadFile(appliance_.PackagePath("target/runs")); }

    bool HasLogged(const std::string& text) const { return appliance_.Log().find(text) != std::string::npos; }

    Appliance appliance_;
    HttpCalls owner_ = appliance_.Owner();
};

TEST_F(ScheduleTest, IsMadeUpForOnceAndEndsWithTheAppliance) {
    const std::string line = std::string("30 3 * * * ") + kCommand + " one two";
    WriteRule(line + "\n* * * * * " + kCommand + " refused");
    appliance_.Stop();
    MissTwoDays("test: " + line);
    for (int start = 0; start < 2; ++start) {
        appliance_.Launch();
        EXPECT_TRUE(WaitUntil([this] { return Runs() == "one two\n" && HasLogged("Not a daily line"); }));
        appliance_.Stop();  // expects that nothing is left of the command
    }
    EXPECT_EQ("one two\n", Runs());
}

// Its token is good for the methods of the module, until the appliance ends.
TEST_F(ScheduleTest, HasATokenOfItsOwn) {
    const fs::path file = appliance_.PackagePath("target/@CVData/run/schedule-token");
    EXPECT_EQ(fs::perms::owner_read | fs::perms::owner_write, fs::status(file).permissions());
    const std::string line = ReadFile(file);
    const std::string token = line.substr(0, line.find('\n'));
    HttpCalls schedule(appliance_.Url(), token);
    EXPECT_TRUE(schedule.AddOns("List").Succeeded());
    EXPECT_EQ(401, schedule.Get("/operationlog").status);
    appliance_.Stop();
    EXPECT_FALSE(fs::exists(file));
    appliance_.Launch();
    EXPECT_EQ(105, HttpCalls(appliance_.Url(), token).AddOns("List").Code());
}

// What is installed, and who asked for that.
class AutoUpdateTest : public ScheduleTest {
protected:
    void SetUp() override {
        feed_.Publish("device_pack-2.3.0-0152");
        feed_.Publish("local_display-1.6.0-0071");
    }

    static std::string ByHand(const Appliance& appliance, const char* name) {
        const Outcome outcome =
            Program({appliance.PathOf("launch"), "--run", kAutoUpdate, name}, {"PATH=/usr/bin:/bin"}).Wait();
        return std::to_string(outcome.status) + " " + outcome.err;
    }

    std::string Version(int service) {
        return appliance_.Owner().AddOns("GetInfo", Param("service", service)).Data()["version"].asString();
    }

    std::string Operations() const {
        std::string entries;
        const Answer log = appliance_.Owner().Get("/operationlog");
        for (const Json::Value& entry : log.Data()["entries"]) {
            entries += entry["who"].asString() + ": " + entry["texts"][0].asString() + " " +
                       entry["texts"][1].asString() + "\n";
        }
        return entries;
    }

    Feed feed_{appliance_};
};

TEST_F(AutoUpdateTest, InstallsTheNewestRelease) {
    std::set<std::string> rules;
    for (const bool isEnabled : {true, false, true}) {
        Json::Value params = Param("service", 1);
        params["blEnable"] = isEnabled;
        ASSERT_TRUE(owner_.AddOns("SetAutoUpdate", params).Succeeded());
        rules.insert(ReadFile(appliance_.PackagePath("target/etc/cron.d/auto-update-device_pack")));
    }
    EXPECT_EQ(2U, rules.size()) << "none, and one at the minute that was drawn once";
    const std::string rule = *rules.rbegin();
    appliance_.Stop();
    MissTwoDays("auto-update-device_pack: " + rule.substr(0, rule.find('\n')));
    appliance_.Launch();
    const std::string told = "schedule: Device Pack Updated to 2.3.0-0152\n";
    EXPECT_TRUE(WaitUntil([&] { return Operations() == told; })) << Operations();
    EXPECT_EQ("2.3.0-0152", Version(1));
    EXPECT_TRUE(WaitUntil([this] { return HasLogged("exit status 0"); }));

    EXPECT_EQ("0 ", ByHand(appliance_, "local_display"));
    EXPECT_EQ("1.6.0-0071", Version(6));
    EXPECT_EQ("0 ", ByHand(appliance_, "local_display"));  // there is no newer one
    EXPECT_EQ(told + "schedule: Local Display Updated to 1.6.0-0071\n", Operations());
}

TEST_F(AutoUpdateTest, SaysWhyNothingIsInstalled) {
    const auto first = [this](const char* name) { return ByHand(appliance_, name).substr(0, 1); };
    EXPECT_EQ("2", first("cms"));
    feed_.Send(Sending::kNotAtAll);
    const std::string failed = "1 auto-update: version 2.3.0-0152 could not be downloaded\n";
    EXPECT_EQ(failed, ByHand(appliance_, "device_pack"));
    fs::remove(appliance_.PackagePath("target/etc/releases.conf"));
    EXPECT_EQ("1 auto-update: the release service could not be asked\n", ByHand(appliance_, "device_pack"));
    EXPECT_EQ("2.1.0-0130", Version(1));
    EXPECT_EQ("", Operations());
}

}  // namespace
}  // namespace e2e
