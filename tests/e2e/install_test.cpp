// "camvoractl install" with the sample packages on a running appliance.
#include "e2e/appliance.h"
#include "e2e/ctl.h"
#include "e2e/packages.h"
#include "e2e/processes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace e2e {
namespace {

class InstallTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start();
        std::ofstream(appliance_->PackagePath("target/etc/programs.conf")) << "time_limit_s=\"1\"\n";
    }

    static Outcome Install(const std::string& sample, const char* option = "--yes") {
        return StartCtl(*appliance_, {"install", SamplePath(sample), option}).Wait();
    }

    Json::Value Info(int service) { return owner_.AddOns("GetInfo", Param("service", service)).Data(); }
    std::string Version(int service) { return Info(service)["version"].asString(); }
};

bool Says(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

struct InstallCase {
    const char* sample;
    int service;
    int status;
    const char* version;  // installed afterwards
    const char* out;
    const char* err;
};

TEST_F(InstallTest, SaysWhatTheScriptsDid) {
    const std::string first = Version(kDevicePackService);
    ASSERT_TRUE(owner_.AddOns("Enable", Param("service", kLocalDisplayService)).Succeeded());
    ASSERT_TRUE(WaitUntil([this] { return Info(kLocalDisplayService)["blRunning"].asBool(); }));
    EXPECT_EQ(0, Install("device_pack-2.2.1-0141-failing", "--dry-run").status);
    EXPECT_EQ(first, Version(kDevicePackService)) << "after no more than a plan";
    for (const InstallCase& row :
         {InstallCase{"device_pack-2.2.1-0141-failing", kDevicePackService, 0, "2.2.1-0141",
                      "Running as before: Local Display", "script/postinst ended with exit status 3"},
          InstallCase{"device_pack-2.2.2-0142-hanging", kDevicePackService, 0, "2.2.2-0142",
                      "in place of 2.2.1-0141", "script/postinst could not be run or did not end by itself"},
          InstallCase{"device_pack-too-old", kDevicePackService, 4, "2.2.2-0142", "",
                      "version of the add-on"},
          InstallCase{"local_display-1.6.0-0071", kLocalDisplayService, 0, "1.6.0-0071",
                      "Running as before: Local Display", "Stops meanwhile"}}) {
        SCOPED_TRACE(row.sample);
        const Outcome outcome = Install(row.sample);
        EXPECT_EQ(row.status, outcome.status);
        EXPECT_EQ(row.version, Version(row.service));
        EXPECT_TRUE(Says(outcome.out, row.out)) << outcome.out;
        EXPECT_TRUE(Says(outcome.err, row.err)) << outcome.err;
    }
    const std::string trace = ReadFile(appliance_->PackagePath("target/@CVData/log/device_pack_scripts.log"));
    EXPECT_TRUE(Says(trace, " preinst 2.1.0-0130\n")) << trace;
}

}  // namespace
}  // namespace e2e
