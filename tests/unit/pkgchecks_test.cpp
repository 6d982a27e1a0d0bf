// Rules of single checks: the machine's platform, and what a service accepts.
#include "addons/pkgcontrol.h"

#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const std::string kAsked = "PLIBCFileGetKeyValue /var/packages/Camvora/target/cv_addOns_name";

struct PlatformCase {
    const char* name;
    const char* unique;  // null where it cannot be read
    const char* elements;
    bool valid;
};

const PlatformCase kPlatformCases[] = {
    {"whole_elements_only", "vendor_plat1_model", R"(["plat10","xplat1","plat"])", false},
    {"between_the_first_and_the_last", "a_b_c_d", R"(["b_c"])", true},
    {"not_between_two_others", "a_b_c_d", R"(["b","c"])", false},
    {"case_counts", "vendor_plat1_model", R"(["Plat1"])", false},
    {"one_underscore", "vendor_plat1", R"(["vendor","plat1"])", false},
    {"unreadable", nullptr, R"(["plat1"])", false},
    {"nothing_between", "vendor__model", R"(["plat1"])", false},
    {"empty_element_for_no_platform", "plat1", R"(["plat0",""])", true},
    {"empty_element_for_a_platform", "vendor_plat1_model", R"(["plat0",""])", false},
    {"no_elements", "plat1", "[]", false},
    {"cut_at_127_bytes",
     "v_plat1_012345678901234567890123456789012345678901234567890123456789"
     "0123456789012345678901234567890123456789012345678901234567890123456789_",
     R"(["plat1"])", true},
};

using Platform = TableTest<PlatformCase>;

TEST_P(Platform, IsTheMachines) {
    fake::Answer(kAsked + "1/INFO arch", "x");
    fake::Answer("PLIBCFileGetKeyValue /var/packages/Camvora/INFO arch", "main");
    if (GetParam().unique != nullptr) {
        fake::Answer("PLIBCFileGetKeyValue /etc.defaults/orvainfo.conf unique", GetParam().unique);
    }
    fake::Answer("String2StrList", fake::ParseJson(GetParam().elements));
    EXPECT_EQ(GetParam().valid, PkgControl(ADDON_SERVICE_DEVICE_PACK).IsPlatformValid());
}

INSTANTIATE_TEST_SUITE_P(, Platform, testing::ValuesIn(kPlatformCases), CaseName<PlatformCase>);

struct AllowedCase {
    const char* name;
    int service;
    const char* package;
    bool allowed;
    const char* logged;  // null for no line
};

const AllowedCase kAllowedCases[] = {
    {"display", 6, "CamvoraLocalDisplay", true, R"('CamvoraLocalDisplay\nCamvoraLocalDisplay\n')"},
    {"device_pack_for_display", 6, "CamvoraDevicePack", false,
     R"('CamvoraLocalDisplay\nCamvoraDevicePack\n')"},
    {"format_for_display", 6, "%s%n", false, R"('CamvoraLocalDisplay\n%s%n\n')"},
    {"service_without_packages", 2, "CamvoraDevicePack", false, nullptr},
};

TEST(PkgAllowed, IsThatOfTheService) {
    for (const AllowedCase& row : kAllowedCases) {
        const fake::Session session;
        const std::string service = std::to_string(row.service);
        fake::Answer(kAsked + service + "/INFO package", row.package);
        EXPECT_EQ(row.allowed, PkgControl(static_cast<ADDON_SERVICE>(row.service)).IsPkgAllowed())
            << row.name;
        Steps steps = {kAsked + service + "/INFO package 256 0"};
        if (row.logged != nullptr) {
            steps.push_back("CVPrintf 0 null null addonsservice IsPkgAllowed " + std::string(row.logged));
        }
        EXPECT_EQ(fake::Lines(steps), fake::Journal()) << row.name;
    }
}

// An empty value was read all the same.
TEST(PkgVersion, MayBeEmpty) {
    const fake::Session session;
    fake::Answer(kAsked + "6//conf version", "");
    fake::Answer("PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf local_display_min_ver", "");
    EXPECT_TRUE(PkgControl(ADDON_SERVICE_LOCAL_DISPLAY).IsPkgVersionValid());
}

}  // namespace
