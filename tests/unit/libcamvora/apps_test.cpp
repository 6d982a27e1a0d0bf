#include "libcamvora/apps.h"

#include "capturedlog.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

bool IsService6(ADDON_SERVICE service) {
    return service == ADDON_SERVICE_LOCAL_DISPLAY;
}

constexpr char kApps[] = R"({"apps":[
    {"id":"live", "title":"t_live", "path":"apps/live"},
    {"id":"display", "title":"t_display", "path":"apps/display", "service":6},
    {"id":"cms", "title":"t_cms", "path":"apps/cms", "service":2}]})";

class AppsTest : public testing::Test {
protected:
    void SetUp() override {
        folder_.Write("ui/apps.json", kApps);
        folder_.Write("ui/texts/en.json", R"({"t_live":"Live View", "t_display":"Display"})");
        folder_.Write("ui/texts/de.json", R"({"t_live":"Live-Ansicht", "t_display":5})");
        (void)TakeLoggedTexts();
    }

    bool Read(const std::string& language) {
        status_ = Json::Value(Json::objectValue);
        return camvora::ReadAppsStatus(folder_.PathOf("ui"), language, IsService6, status_);
    }

    const TemporaryFolder folder_;
    Json::Value status_;
};

TEST_F(AppsTest, HaveTitlePathAndWhetherTheyWork) {
    EXPECT_TRUE(Read("en"));
    ASSERT_EQ(3U, status_.size());
    EXPECT_EQ("Live View", status_["live"]["title"].asString());
    EXPECT_EQ("apps/live", status_["live"]["path"].asString());
    EXPECT_TRUE(status_["live"]["blEnabled"].asBool());
    EXPECT_TRUE(status_["display"]["blEnabled"].asBool());
    EXPECT_FALSE(status_["cms"]["blEnabled"].asBool());
    EXPECT_TRUE(TakeLoggedTexts().empty());
}

TEST_F(AppsTest, FallBackToEnglishThenToTheKey) {
    EXPECT_TRUE(Read("de"));
    EXPECT_EQ("Live-Ansicht", status_["live"]["title"].asString());
    EXPECT_EQ("Display", status_["display"]["title"].asString());
    EXPECT_EQ("t_cms", status_["cms"]["title"].asString());
}

TEST_F(AppsTest, TakeEnglishForWhatIsNoKnownLanguage) {
    folder_.Write("ui/x.json", R"({"t_live":"outside"})");
    folder_.Write("ui/texts/.json", R"({"t_live":"no name"})");
    folder_.Write("ui/texts/DE.json", R"({"t_live":"upper case"})");
    for (const char* language : {"", "fr", "DE", "../x"}) {
        EXPECT_TRUE(Read(language)) << language;
        EXPECT_EQ("Live View", status_["live"]["title"].asString()) << language;
    }
    EXPECT_TRUE(TakeLoggedTexts().empty());
}

struct Damage {
    const char* file;
    std::string content;
    unsigned appsLeft;
};

TEST_F(AppsTest, CostsWhatIsDamagedAndALineInTheLog) {
    const std::vector<Damage> kDamages = {
        {"ui/apps.json", R"({"apps":[{"id":"live")", 0},
        {"ui/apps.json", "{\"apps\":[]}" + std::string(2U << 20, ' '), 0},
        {"ui/apps.json", R"({"apps":{"live":{}}})", 0},
        {"ui/apps.json", R"({"apps":[5, {"title":"t", "path":"p"}, {"id":"live", "title":"t", "path":"p"}]})",
         1},
        {"ui/apps.json", R"({"apps":[{"id":"live", "title":"t", "path":"p", "service":6000000000}]})", 0},
        {"ui/apps.json", R"({"apps":[]} {})", 0},
        {"ui/texts/de.json", "{", 0},
        {"ui/texts/en.json", "{", 0},
    };
    for (const Damage& damage : kDamages) {
        SCOPED_TRACE(damage.file + damage.content.substr(0, 100));
        SetUp();
        folder_.Write(damage.file, damage.content);
        EXPECT_FALSE(Read("de"));
        EXPECT_TRUE(status_.isObject());
        EXPECT_EQ(damage.appsLeft, status_.size());
        EXPECT_EQ(1U, TakeLoggedTexts().size());
    }
}

TEST(ShippedApps, HaveTitlesInEachLanguage) {
    for (const char* language : {"en", "de"}) {
        Json::Value status(Json::objectValue);
        ASSERT_TRUE(camvora::ReadAppsStatus(UI_FOLDER, language, IsService6, status));
        EXPECT_FALSE(status.empty());
        for (const Json::Value& app : status) {
            EXPECT_NE(0U, app["title"].asString().rfind("app_", 0)) << language << app["title"].asString();
        }
    }
}

}  // namespace
