// The inspection of a package: what it reads and asks, in which order, and what comes out.
#include "addons/pkgcontrol.h"

#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string kMainInfo = "/var/packages/Camvora/INFO";
const std::string kMainConf = "/var/packages/Camvora/target/etc/cv.conf";
const std::string kMachine = "/etc.defaults/orvainfo.conf";
const std::string kWorkDir = "/var/packages/Camvora/target/cv_addOns_name1";
const std::string kInfo = kWorkDir + "/INFO";
const std::string kConf = kWorkDir + "/device_pack/conf";

std::string Value(const std::string& file, const std::string& key) {
    return "PLIBCFileGetKeyValue " + file + " " + key;
}

std::string Read(const std::string& file, const std::string& key, int sizeBytes = 256) {
    return Value(file, key) + " " + std::to_string(sizeBytes) + " 0";
}

std::string Newer(const std::string& versions) {
    return "AddonsUpdate::IsVersionNewer " + versions;
}

const Steps kWait = {"BeginCriticalSection /tmp/cv_AddOns_Package_name1.lock 3000"};
const Steps kRecover = {"lstat /var/packages/Camvora/target/device_pack.aside",
                        "lstat /var/packages/Camvora/target/device_pack.dropped"};
const Steps kLock = kWait + kRecover;
const Steps kFind = {Read(kMainConf, "addons_upload_dir"), "PLIBCFileExist /up/1"};
const Steps kExtract = {
    "mkdir " + kWorkDir + ".partial",
    "CVRm " + kWorkDir + "/",
    "CreateFullDirPath " + kWorkDir + "/",
    "PLIBCExec /bin/tar -C " + kWorkDir + "/ -xvf /up/1",
    "nftw " + kWorkDir,
    "lstat " + kWorkDir + "/device_pack",
    "PLIBCExec /bin/tar -C " + kWorkDir + "/ -xvf " + kWorkDir + "/package.tgz",
    "lstat " + kWorkDir,
    "lstat " + kInfo,
    "lstat " + kWorkDir + "/device_pack",
    "lstat " + kConf,
    "lstat " + kWorkDir + "/device_pack/script",
    "lstat " + kWorkDir + "/device_pack/script/preupgrade",
    "lstat " + kWorkDir + "/device_pack/script/preinst",
    "lstat " + kWorkDir + "/device_pack/script/postinst",
    "lstat " + kWorkDir + "/device_pack/script/postupgrade",
    "lstat " + kWorkDir + "/device_pack/script/restore",
    "rmdir " + kWorkDir + ".partial",
    "CVRm /up/1",
};
const Steps kUnpacked = kLock + kFind + kExtract;
const Steps kName = {Read(kInfo, "package")};  // what the package is, and where its conf lies
const Steps kArch = {Read(kInfo, "arch")};
const Steps kMainArch = {Read(kMainInfo, "arch")};
const Steps kPlatform = {Read(kMachine, "unique", 128), "String2StrList plat1 ' '"};
const Steps kMinMain = {Read(kConf, "cv_min_ver")};
const Steps kMainVersion = {Read(kMainInfo, "version")};
const Steps kVersion = {Read(kConf, "version")};
const Steps kMinAddOn = {Read(kMainConf, "dp_min_ver")};
const Steps kSuits = kUnpacked + kName + kArch + kMainArch + kPlatform;
const Steps kMainCheck = kName + kMinMain + kMainVersion + Steps{Newer("9.2-1 9.0 true")};
const Steps kMainSuits = kSuits + kMainCheck;
const Steps kVersionCheck = kName + kVersion + kMinAddOn + Steps{Newer("4.1-7 4.0 true")};
const Steps kDescribe = kName + kVersion + Steps{Read(kConf, "maintainer")};
const Steps kUnlock = {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_AddOns_Package_name1.lock"};

std::string ErrInfo(const std::string& section, const std::string& key, const std::string& param1 = "",
                    const std::string& param2 = "", const std::string& param3 = "") {
    Json::Value errInfo;
    SetErrInfo(errInfo, section, key, param1, param2, param3);
    return R"({"errinfo":)" + fake::WriteJson(errInfo);
}

const std::string kInvalidFile = ErrInfo("localdisplay", "invalid_file") + "}";

const std::string kSuccess =
    R"({"errinfo":null,"filePath":")" + kWorkDir + R"(/","maintainer":"me","version":"4.1-7"})";

const Json::Value kMissing;

struct InspectionCase {
    const char* name;
    std::string changed;  // one answer that differs from those of a valid package
    Json::Value answer;
    Steps steps;
    std::string result;
};

const InspectionCase kInspectionCases[] = {
    {"valid", "", {}, kMainSuits + kVersionCheck + kDescribe + kUnlock, kSuccess},
    {"locked_by_another", "BeginCriticalSection", -1,
     kWait + Steps{"CVPrintf 0 null null addonsservice GetPkgInfo "
                   R"('Failed to lock [/tmp/cv_AddOns_Package_name1.lock].\n')"},
     kInvalidFile},
    {"not_in_the_upload_area", Value(kMainConf, "addons_upload_dir"), "/other",
     kLock + Steps{kFind[0]} + kUnlock, kInvalidFile},
    {"no_plain_file_in_the_upload_area", Value(kMainConf, "addons_upload_dir"), "/up",
     kLock + Steps{kFind[0], "lstat /up/1"} + kUnlock, kInvalidFile},
    {"no_file", "PLIBCFileExist", 0, kLock + kFind + kUnlock, kInvalidFile},
    {"no_identifier", Value(kInfo, "package"), kMissing, kUnpacked + kName + kUnlock, kInvalidFile},
    {"other_add_on", Value(kInfo, "package"), "CamvoraLocalDisplay", kUnpacked + kName + kUnlock,
     kInvalidFile},
    {"no_arch", Value(kInfo, "arch"), kMissing, kUnpacked + kName + kArch + kUnlock, kInvalidFile},
    {"no_main_arch", Value(kMainInfo, "arch"), kMissing, kUnpacked + kName + kArch + kMainArch + kUnlock,
     kInvalidFile},
    {"same_arch_as_main", Value(kMainInfo, "arch"), "plat1",
     kUnpacked + kName + kArch + kMainArch + kMainCheck + kVersionCheck + kDescribe + kUnlock, kSuccess},
    {"other_platform", "String2StrList", fake::ParseJson(R"(["plat10"])"), kSuits + kUnlock,
     ErrInfo("device_pack", "plat_not_support", "main") + "}"},
    {"no_minimum_of_main", Value(kConf, "cv_min_ver"), kMissing, kSuits + kName + kMinMain + kUnlock,
     kInvalidFile},
    {"no_main_version", Value(kMainInfo, "version"), kMissing,
     kSuits + kName + kMinMain + kMainVersion + kUnlock, kInvalidFile},
    {"main_too_old", Newer("9.2-1"), false, kMainSuits + kUnlock,
     ErrInfo("device_pack", "cv_ver_too_old", "9.0") + "}"},
    {"no_version", Value(kConf, "version"), kMissing, kMainSuits + kName + kVersion + kUnlock, kInvalidFile},
    {"no_minimum_of_add_on", Value(kMainConf, "dp_min_ver"), kMissing,
     kMainSuits + kName + kVersion + kMinAddOn + kUnlock, kInvalidFile},
    {"add_on_too_old", Newer("4.1-7"), false, kMainSuits + kVersionCheck + kUnlock,
     ErrInfo("addons", "forbid_downgrade", "Device Pack", "4.0", "4.1-7") + "}"},
    {"no_maintainer", Value(kConf, "maintainer"), kMissing, kMainSuits + kVersionCheck + kDescribe + kUnlock,
     ErrInfo("localdisplay", "invalid_file") + R"(,"version":"4.1-7"})"},
};

void AnswerForValidPackage() {
    fake::Answer(Value(kInfo, "package"), "CamvoraDevicePack");
    fake::Answer(Value(kInfo, "arch"), "plat1");
    fake::Answer(Value(kMainInfo, "arch"), "main");
    fake::Answer(Value(kMachine, "unique"), "vendor_plat1_model");
    fake::Answer("String2StrList", fake::ParseJson(R"(["plat0","plat1"])"));
    fake::Answer(Value(kConf, "cv_min_ver"), "9.0");
    fake::Answer(Value(kMainInfo, "version"), "9.2-1");
    fake::Answer(Value(kConf, "version"), "4.1-7");
    fake::Answer(Value(kMainConf, "dp_min_ver"), "4.0");
    fake::Answer(Value(kConf, "maintainer"), "me");
}

using Inspection = TableTest<InspectionCase>;

TEST_P(Inspection, ChecksInOrderUpToTheFirstFailure) {
    const InspectionCase& row = GetParam();
    AnswerForValidPackage();
    fake::Answer(row.changed, row.answer);
    PkgControl package(ADDON_SERVICE_DEVICE_PACK);
    Json::Value result(Json::objectValue);
    const int outcome =
        package.GetPkgInfo(fake::ParseJson(R"({"filePath":"/up/1","fileName":"a.spk"})"), result, false);
    EXPECT_EQ(row.result, fake::WriteJson(result));
    EXPECT_EQ(result["errinfo"].isNull() ? 0 : -1, outcome);
    EXPECT_EQ(fake::Lines(row.steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Inspection, testing::ValuesIn(kInspectionCases), CaseName<InspectionCase>);

struct PkgInfoCase {
    const char* name;
    const char* pkgInfo;
    const char* file;  // that is looked for; null where the name is refused before
};

// The file is not there: only whether it is looked for is asked here.
const PkgInfoCase kPkgInfoCases[] = {
    {"null", "null", nullptr},
    {"list", R"([{"filePath":"/up/1","fileName":"x.spk"}])", nullptr},
    {"name_is_number", R"({"filePath":"/up/1","fileName":5})", nullptr},
    {"path_is_object", R"({"filePath":{},"fileName":"x.spk"})", "''"},
    {"last_of_two_extensions", R"({"filePath":"/up/1","fileName":"x.tar.spk"})", "/up/1"},
    {"extension_alone", R"({"filePath":"/up/1","fileName":".spk"})", "/up/1"},
    {"no_dot_but_the_very_text", R"({"filePath":"/up/1","fileName":"spk"})", "/up/1"},
    {"no_dot", R"({"filePath":"/up/1","fileName":"xspk"})", nullptr},
    {"upper_case", R"({"filePath":"/up/1","fileName":"x.SPK"})", nullptr},
    {"more_text", R"({"filePath":"/up/1","fileName":"x.spk2"})", nullptr},
    {"final_dot", R"({"filePath":"/up/1","fileName":"x.spk."})", nullptr},
    {"nul_behind", R"({"filePath":"/up/1","fileName":"x.spk\u0000"})", nullptr},
};

using PkgInfo = TableTest<PkgInfoCase>;

TEST_P(PkgInfo, IsReadWhateverItIs) {
    fake::Answer("PLIBCFileExist", 0);
    PkgControl package(ADDON_SERVICE_DEVICE_PACK);
    Json::Value result(Json::objectValue);
    EXPECT_EQ(-1, package.GetPkgInfo(fake::ParseJson(GetParam().pkgInfo), result, false));
    EXPECT_EQ(kInvalidFile, fake::WriteJson(result));
    Steps looked;
    if (GetParam().file != nullptr) {
        looked = {kFind[0], std::string("PLIBCFileExist ") + GetParam().file};
    }
    EXPECT_EQ(fake::Lines(kLock + looked + kUnlock), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, PkgInfo, testing::ValuesIn(kPkgInfoCases), CaseName<PkgInfoCase>);

TEST(PkgControl, ReadsTheSettingsInTheTreeOfThePackage) {
    const fake::Session session;
    const std::string workDir = "/var/packages/Camvora/target/cv_addOns_name6";
    const PkgControl package(ADDON_SERVICE_LOCAL_DISPLAY);
    fake::AnswerOnce(Value(workDir + "/INFO", "package"), "CamvoraDevicePack");
    EXPECT_EQ(workDir + "/device_pack/conf", package.GetFilePath(PKG_PATH_CONF));
    fake::AnswerOnce(Value(workDir + "/INFO", "package"), "other");
    EXPECT_EQ(workDir + "/other/conf", package.GetFilePath(PKG_PATH_CONF));
}

TEST(PkgControl, KnowsNoMinimumVersionOfAServiceWithoutPackages) {
    const fake::Session session;
    EXPECT_EQ("", PkgControl(ADDON_SERVICE_CMS).GetAppMinVerKey());
    EXPECT_EQ(fake::Lines({R"(CVPrintf 0 null null addonsservice GetAppMinVerKey 'Invalid service\n')"}),
              fake::Journal());
}

TEST(UnpackedTree, IsMarkedWhereItCannotBeRemoved) {
    const fake::Session session;
    fake::Answer("CVRm", -1);
    EXPECT_TRUE(ForgetUnpacked(ADDON_SERVICE_DEVICE_PACK, false));
    EXPECT_EQ(fake::Lines({"mkdir " + kWorkDir + ".partial", "CVRm " + kWorkDir + "/device_pack"}),
              fake::Journal());
}

TEST(ErrorInfo, LeavesOtherMembers) {
    Json::Value errInfo = fake::ParseJson(R"({"param1":"old","more":1})");
    SetErrInfo(errInfo, "s", "k", "1", "2", "3");
    EXPECT_EQ(R"({"key":"k","more":1,"param1":"1","param2":"2","param3":"3","sec":"s"})",
              fake::WriteJson(errInfo));
}

}  // namespace
