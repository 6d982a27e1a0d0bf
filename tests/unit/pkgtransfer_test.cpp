// The package file from the CMS host.
#include "addons/pkgcontrol.h"

#include "fake/journal.h"
#include "fake/json.h"
#include "fake/script.h"
#include "fake/session.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Steps = std::vector<std::string>;

const Steps kAsk = {
    "PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir 256 0",
    "GetJsonAPIInfo ORVA.Camvora.AddOns LoadFile 1",
    R"(SendWebAPIToHost {"filePath":""} true {} 40 null 0)",
};
const Steps kSilent = {};
const Steps kNoFile = {
    R"(CVPrintf 0 null null addonsservice GetFileFromHost 'Failed to load file from host\n')"};

struct ReplyCase {
    const char* name;
    const char* reply;
    int result;
    Steps steps;  // once the reply is there
};

const ReplyCase kReplyCases[] = {
    {"file",
     R"({"success":true,"data":{"fileSize":3,"fileData":"YWJj"}})",
     0,
     {"WriteFileByBase64String '' YWJj 3"}},
    {"empty_file",
     R"({"success":true,"data":{"fileSize":0,"fileData":""}})",
     0,
     {"WriteFileByBase64String '' '' 0"}},
    {"text_with_nul",
     R"({"success":true,"data":{"fileSize":3,"fileData":"YW\u0000j"}})",
     0,
     {R"(WriteFileByBase64String '' 'YW\x00j' 3)"}},
    {"success_is_number",
     R"({"success":1,"data":{"fileSize":3,"fileData":"YWJj"}})",
     0,
     {"WriteFileByBase64String '' YWJj 3"}},
    {"no_success", R"({"success":false,"data":{"fileSize":3,"fileData":"YWJj"}})", -1, kNoFile},
    {"success_missing", R"({"data":{"fileSize":3,"fileData":"YWJj"}})", -1, kNoFile},
    {"success_is_text", R"({"success":"true","data":{"fileSize":3,"fileData":"YWJj"}})", -1, kNoFile},
    {"null", "null", -1, kNoFile},
    {"list", "[true]", -1, kNoFile},
    {"text", R"("success")", -1, kNoFile},
    {"data_missing", R"({"success":true})", -1, kNoFile},
    {"data_is_text", R"({"success":true,"data":"YWJj"})", -1, kNoFile},
    {"data_is_list", R"({"success":true,"data":[3,"YWJj"]})", -1, kNoFile},
    {"size_missing", R"({"success":true,"data":{"fileData":"YWJj"}})", -1, kNoFile},
    {"size_is_text", R"({"success":true,"data":{"fileSize":"3","fileData":"YWJj"}})", -1, kNoFile},
    {"size_is_fraction", R"({"success":true,"data":{"fileSize":3.5,"fileData":"YWJj"}})", -1, kNoFile},
    {"size_is_negative", R"({"success":true,"data":{"fileSize":-1,"fileData":"YWJj"}})", -1, kSilent},
    {"size_beyond_int", R"({"success":true,"data":{"fileSize":2147483648,"fileData":"YWJj"}})", -1, kSilent},
    {"size_beyond_64_bits", R"({"success":true,"data":{"fileSize":1e300,"fileData":"YWJj"}})", -1, kNoFile},
    {"text_missing", R"({"success":true,"data":{"fileSize":3}})", -1, kNoFile},
    {"text_is_number", R"({"success":true,"data":{"fileSize":3,"fileData":5}})", -1, kNoFile},
};

class HostReply : public testing::TestWithParam<ReplyCase> {
    fake::Session session_;
};

TEST_P(HostReply, IsAFileOrAFailedTransfer) {
    fake::Answer("SendWebAPIToHost reply", fake::ParseJson(GetParam().reply));
    EXPECT_EQ(GetParam().result, PkgControl(ADDON_SERVICE_DEVICE_PACK).GetFileFromHost());
    Steps steps = kAsk;
    steps.insert(steps.end(), GetParam().steps.begin(), GetParam().steps.end());
    EXPECT_EQ(fake::Lines(steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, HostReply, testing::ValuesIn(kReplyCases),
                         [](const auto& row) { return std::string(row.param.name); });

struct FetchCase {
    const char* name;
    const char* answers;
    Steps steps;  // from the question whether there is a host
};

const std::string kUploadDir =
    "PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir";
const std::string kLog = "CVPrintf 0 null null addonsservice ";
const Steps kFetch = {"IsCmsPaired", kUploadDir + " 256 0", "GetJsonAPIInfo ORVA.Camvora.AddOns LoadFile 1",
                      R"(SendWebAPIToHost {"filePath":"/up/1"} true {} 40 null 0)"};

const FetchCase kFetchCases[] = {
    {"not_paired", R"({"IsCmsPaired":false})", {"IsCmsPaired"}},
    {"no_reply",
     R"({"SendWebAPIToHost":-1})",
     {kFetch[0], kFetch[1], kFetch[2], kFetch[3],
      kLog + R"(GetFileFromHost 'Failed to send webapi to host [{"filePath":"/up/1"}].\n')"}},
    {"not_written",
     R"({"SendWebAPIToHost reply":{"success":true,"data":{"fileSize":3,"fileData":"YWJj"}},
         "WriteFileByBase64String":-1})",
     {kFetch[0], kFetch[1], kFetch[2], kFetch[3], "WriteFileByBase64String /up/1 YWJj 3",
      kLog + R"(GetFileFromHost 'Failed to write file = [/up/1],Size = [3]\n')"}},
    {"outside_the_upload_area",
     R"({"PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir":"/other"})",
     {kFetch[0], kFetch[1]}},
};

class Fetch : public testing::TestWithParam<FetchCase> {
    fake::Session session_;
};

TEST_P(Fetch, FailsWithoutUnpacking) {
    fake::AnswerEach(GetParam().answers);
    PkgControl package(ADDON_SERVICE_DEVICE_PACK);
    Json::Value result(Json::objectValue);
    EXPECT_EQ(
        -1, package.GetPkgInfo(fake::ParseJson(R"({"filePath":"/up/1","fileName":"a.spk"})"), result, true));
    EXPECT_EQ("invalid_file", result["errinfo"]["key"].asString());
    Steps steps = {"GetServiceStr 1", "BeginCriticalSection /tmp/cv_AddOns_Package_name1.lock 3000",
                   "lstat /var/packages/Camvora/target/device_pack.aside",
                   "lstat /var/packages/Camvora/target/device_pack.dropped"};
    steps.insert(steps.end(), GetParam().steps.begin(), GetParam().steps.end());
    steps.insert(steps.end(),
                 {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_AddOns_Package_name1.lock"});
    EXPECT_EQ(fake::Lines(steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Fetch, testing::ValuesIn(kFetchCases),
                         [](const auto& row) { return std::string(row.param.name); });

// Everything is read from the directory of fetched packages.
class FetchedPackage : public testing::Test {
protected:
    FetchedPackage() {
        fake::Answer("SendWebAPIToHost reply",
                     fake::ParseJson(R"({"success":true,"data":{"fileSize":3,"fileData":"YWJj"}})"));
        const std::string value = "PLIBCFileGetKeyValue ";
        fake::Answer(value + kDir + "/INFO package", "CamvoraLocalDisplay");
        fake::Answer(value + kDir + "/INFO arch", "main");
        fake::Answer(value + "/var/packages/Camvora/INFO arch", "main");
        fake::Answer(value + "/var/packages/Camvora/INFO version", "9.2-1");
        fake::Answer(value + "/var/packages/Camvora/target/etc/cv.conf local_display_min_ver", "1.0");
        for (const char* key : {"cv_min_ver", "version", "maintainer"}) {
            fake::Answer(value + kDir + "/local_display/conf " + key, key);
        }
    }

    Json::Value Inspect(int outcome) const {
        PkgControl package(ADDON_SERVICE_LOCAL_DISPLAY);
        Json::Value result(Json::objectValue);
        EXPECT_EQ(outcome, package.GetPkgInfo(fake::ParseJson(R"({"filePath":"/up/1","fileName":"a.spk"})"),
                                              result, true));
        return result;
    }

    const std::string kDir = "/var/packages/Camvora/target/cv_addOns_name6_host";

private:
    fake::Session session_;
};

TEST_F(FetchedPackage, IsUnpackedIntoADirectoryOfItsOwn) {
    EXPECT_EQ(kDir + "/", Inspect(0)["filePath"].asString());
    EXPECT_NE(std::string::npos, fake::Journal().find("lstat " + kDir + "/local_display/conf\n"));
    EXPECT_EQ(std::string::npos, fake::Journal().find("PLIBCFileExist"));  // the transfer has said it
}

TEST_F(FetchedPackage, ThatIsTooOldIsNamed) {
    fake::Answer("AddonsUpdate::IsVersionNewer version", false);
    EXPECT_EQ("Local Display", Inspect(-1)["errinfo"]["param1"].asString());
}

}  // namespace
