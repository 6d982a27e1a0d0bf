#include "libcamvora/settings.h"

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

}  // namespace
