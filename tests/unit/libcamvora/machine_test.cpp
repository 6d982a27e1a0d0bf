#include "platform/settings.h"

#include <gtest/gtest.h>

namespace {

TEST(Machine, IsARecorderByTheNameOfItsModel) {
    for (const char* recorder : {"NVR4", "NVR-16", "NVR"}) {
        EXPECT_TRUE(IsNVRModel(recorder)) << recorder;
    }
    for (const char* other : {"", "NAS2", "nvr4", "DS-NVR4", "NV"}) {
        EXPECT_FALSE(IsNVRModel(other)) << other;
    }
}

}  // namespace
