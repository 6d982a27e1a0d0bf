#include "libcamvora/servicetable.h"
#include "libcamvora/settings.h"
#include "platform/settings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct NameCase {
    int service;
    const char* shortName;
};

const NameCase kNameCases[] = {
    {0, "none"},     {1, "device_pack"},   {2, "cms"},      {3, "service3"},   {4, "service4"},
    {5, "service5"}, {6, "local_display"}, {7, "service7"}, {-1, "service-1"},
};

TEST(Services, HaveShortNamesWhateverTheirNumber) {
    for (const NameCase& c : kNameCases) {
        const auto service = static_cast<ADDON_SERVICE>(c.service);
        EXPECT_EQ(c.shortName, GetServiceStr(service));
        EXPECT_EQ("auto_download_" + std::string(c.shortName), GetAutoDownloadKey(service));
    }
}

struct SettingCase {
    const char* name;
    const char* value;  // null for absent
    bool defaultValue;
    bool enabled;
};

const SettingCase kSettingCases[] = {
    {"on", "yes", false, true},         {"off", "no", true, false},
    {"absent_on", nullptr, true, true}, {"absent_off", nullptr, false, false},
    {"damaged_on", "1", true, true},    {"damaged_off", "YES", false, false},
};

class BooleanSetting : public testing::TestWithParam<SettingCase> {};

TEST_P(BooleanSetting, IsReadOrDefaults) {
    camvora::State state;
    if (GetParam().value != nullptr) {
        state.settings["key"] = GetParam().value;
    }
    EXPECT_EQ(GetParam().enabled, camvora::IsSettingEnabled(state, "key", GetParam().defaultValue));
}

INSTANTIATE_TEST_SUITE_P(All, BooleanSetting, testing::ValuesIn(kSettingCases),
                         [](const auto& setting) { return std::string(setting.param.name); });

}  // namespace
