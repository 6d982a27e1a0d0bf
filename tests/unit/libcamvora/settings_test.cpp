#include "libcamvora/settings.h"

#include "platform/settings.h"

#include <gtest/gtest.h>

namespace {

TEST(BooleanSetting, HasItsDefaultWhenAbsentOrDamaged) {
    camvora::State state;
    for (const bool defaultValue : {true, false}) {
        EXPECT_EQ(defaultValue, camvora::IsSettingEnabled(state, "absent", defaultValue));
        state.settings["key"] = "YES";
        EXPECT_EQ(defaultValue, camvora::IsSettingEnabled(state, "key", defaultValue));
        state.settings["key"] = "yes";
        EXPECT_TRUE(camvora::IsSettingEnabled(state, "key", defaultValue));
        state.settings["key"] = "no";
        EXPECT_FALSE(camvora::IsSettingEnabled(state, "key", defaultValue));
    }
}

TEST(Machine, IsARecorderByTheNameOfItsModel) {
    for (const char* recorder : {"NVR4", "NVR-16", "NVR"}) {
        EXPECT_TRUE(IsNVRModel(recorder)) << recorder;
    }
    for (const char* other : {"", "NAS2", "nvr4", "DS-NVR4", "NV"}) {
        EXPECT_FALSE(IsNVRModel(other)) << other;
    }
}

}  // namespace
