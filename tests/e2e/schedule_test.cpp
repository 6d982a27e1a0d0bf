// The schedule of a real appliance.
#include "e2e/appliance.h"
#include "e2e/processes.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace e2e {
namespace {

namespace fs = std::filesystem;

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
            database, "INSERT INTO schedule VALUES(?, CAST(strftime('%s', 'now', '-2 days') AS INTEGER))");
        record.bind(1, "test: " + line);
        record.exec();
    }

    std::string Runs() const { return ReadFile(appliance_.PackagePath("target/runs")); }

    bool HasLogged(const std::string& text) const { return appliance_.Log().find(text) != std::string::npos; }

    Appliance appliance_;
};

TEST_F(ScheduleTest, IsMadeUpForOnceAndEndsWithTheAppliance) {
    const std::string line = std::string("30 3 * * * ") + kCommand + " one two";
    WriteRule(line + "\n* * * * * " + kCommand + " refused");
    appliance_.Stop();
    MissTwoDays(line);
    for (int start = 0; start < 2; ++start) {
        appliance_.Launch();
        EXPECT_TRUE(WaitUntil([this] { return Runs() == "one two\n" && HasLogged("Not a daily line"); }));
        appliance_.Stop();  // expects that nothing is left of the command
    }
    EXPECT_EQ("one two\n", Runs());
}

TEST_F(ScheduleTest, HasALineForEachAddOnThatIsUpdatedByItself) {
    const auto rule = [this](const std::string& name) {
        return ReadFile(appliance_.PackagePath("target/etc/cron.d/auto-update-" + name));
    };
    HttpCalls owner = appliance_.Owner();
    std::string timeOfDay;
    for (const auto& [service, name] : {std::pair(1, "device_pack"), std::pair(6, "local_display")}) {
        Json::Value params = Param("service", service);
        params["blEnable"] = true;
        EXPECT_TRUE(owner.AddOns("SetAutoUpdate", params).Succeeded());
        const std::string command =
            std::string(" * * * /var/packages/Camvora/target/bin/auto-update ") + name + "\n";
        const std::size_t begin = rule(name).find(command);
        ASSERT_NE(std::string::npos, begin) << rule(name);
        timeOfDay = timeOfDay.empty() ? rule(name).substr(0, begin) : timeOfDay;
        EXPECT_EQ(timeOfDay + command, rule(name));
        params["blEnable"] = false;
        EXPECT_TRUE(owner.AddOns("SetAutoUpdate", params).Succeeded());
        EXPECT_EQ("", rule(name));
    }
}

}  // namespace
}  // namespace e2e
