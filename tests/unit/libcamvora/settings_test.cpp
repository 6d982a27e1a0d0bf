#include "libcamvora/settings.h"

#include <gtest/gtest.h>

namespace {

struct SettingCase {
    const char* value;
    bool whenDefaultOn;
    bool whenDefaultOff;
};

TEST(BooleanSetting, HasItsDefaultWhenAbsentOrDamaged) {
    camvora::State state;
    EXPECT_TRUE(camvora::IsSettingEnabled(state, "key", true));
    EXPECT_FALSE(camvora::IsSettingEnabled(state, "key", false));
    for (const SettingCase& row : {SettingCase{"yes", true, true}, SettingCase{"no", false, false},
                                   SettingCase{"1", true, false}, SettingCase{"YES", true, false}}) {
        state.settings["key"] = row.value;
        EXPECT_EQ(row.whenDefaultOn, camvora::IsSettingEnabled(state, "key", true)) << row.value;
        EXPECT_EQ(row.whenDefaultOff, camvora::IsSettingEnabled(state, "key", false)) << row.value;
    }
}

}  // namespace
