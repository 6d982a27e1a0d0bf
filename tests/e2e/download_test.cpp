// Installing what an online download has left, with the sample packages.
#include "e2e/appliance.h"
#include "e2e/downloads.h"
#include "e2e/packages.h"
#include "e2e/processes.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace e2e {
namespace {

class DownloadTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(); }

    Json::Value Info(int service) { return owner_.AddOns("GetInfo", Param("service", service)).Data(); }
    bool Runs(int service) { return Info(service)["blRunning"].asBool(); }

    // How the add-on's scripts ended, by their names, in the order in which they ran.
    std::vector<std::string> ScriptEnds(const std::string& requestId) {
        const Json::Value programs = owner_.Get("/programs?request=" + requestId).Data()["programs"];
        std::vector<std::string> ends;
        for (const Json::Value& run : programs) {
            const std::filesystem::path path = run["path"].asString();
            if (path.parent_path().filename() == "script") {
                ends.push_back(path.filename().string() + " " + run["exitStatus"].asString());
            }
        }
        return ends;
    }
};

struct InstallCase {
    const char* sample;
    const char* version;
    std::vector<std::string> scriptEnds;
};

TEST_F(DownloadTest, IsInstalledWhateverTheScriptsDo) {
    ASSERT_TRUE(owner_.AddOns("Enable", Param("service", 3)).Succeeded());
    ASSERT_TRUE(WaitUntil([this] { return Runs(3); }));
    for (const InstallCase& row :
         {InstallCase{"device_pack-2.2.1-0141-failing",
                      "2.2.1-0141",
                      {"preupgrade 0", "preinst 0", "postinst 3", "postupgrade 3"}},
          InstallCase{"device_pack-2.3.0-0152",
                      "2.3.0-0152",
                      {"preupgrade 3", "preinst 3", "postinst 0", "postupgrade 0"}}}) {
        SCOPED_TRACE(row.sample);
        PutDownload(*appliance_, kDevicePackService,
                    CAMVORA_BUILD_FOLDER "/packages/" + std::string(row.sample) + ".spk");
        const Json::Value before = Info(3)["pid"];
        const Answer answer = owner_.AddOns("Update", Param("service", kDevicePackService));
        EXPECT_TRUE(answer.Succeeded());
        EXPECT_EQ(row.version, Info(kDevicePackService)["version"].asString());
        EXPECT_EQ(row.scriptEnds, ScriptEnds(answer.requestId));
        EXPECT_TRUE(Runs(3)) << "what the update has stopped";
        EXPECT_NE(before, Info(3)["pid"]);
        EXPECT_EQ(400, owner_.AddOns("Update", Param("service", kDevicePackService)).Code())
            << "the download is forgotten";
    }
}

// Its file is used up, but not what is installed.
TEST_F(DownloadTest, ThatIsDamagedReplacesNothing) {
    const TemporaryFolder folder;
    folder.Write("damaged", "no archive");
    for (const int service : {kDevicePackService, kLocalDisplayService}) {
        const Json::Value version = Info(service)["version"];
        ASSERT_NE("", version.asString());
        PutDownload(*appliance_, service, folder.PathOf("damaged"));
        for (int attempt = 0; attempt < 2; ++attempt) {
            EXPECT_EQ(400, owner_.AddOns("Update", Param("service", service)).Code());
            EXPECT_EQ(version, Info(service)["version"]);
        }
    }
}

TEST_F(DownloadTest, IsShownToTheOwner) {
    PutDownload(*appliance_, kDevicePackService, CAMVORA_BUILD_FOLDER "/packages/device_pack-2.3.0-0152.spk");
    const Json::Value downloads = owner_.Get("/downloads").Data()["downloads"];
    ASSERT_FALSE(downloads.empty());
    EXPECT_EQ(kDevicePackService, downloads[0]["service"].asInt());
    EXPECT_EQ(2, downloads[0]["status"].asInt());
    EXPECT_EQ("9.0.0-0001", downloads[0]["version"].asString());
    EXPECT_TRUE(owner_.Get("/releases").Data()["releases"].isArray());
    for (const char* page : {"/downloads", "/releases"}) {
        EXPECT_EQ(401, appliance_->Stranger().Get(page).status);
    }
}

}  // namespace
}  // namespace e2e
