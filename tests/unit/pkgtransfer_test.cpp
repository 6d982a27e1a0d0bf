// The package file from the CMS host.
#include "addons/pkgcontrol.h"

#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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
    {"list", "[true]", -1, kNoFile},
    {"data_missing", R"({"success":true})", -1, kNoFile},
    {"data_is_list", R"({"success":true,"data":[3,"YWJj"]})", -1, kNoFile},
    {"size_is_fraction", R"({"success":true,"data":{"fileSize":3.5,"fileData":"YWJj"}})", -1, kNoFile},
    {"size_is_negative", R"({"success":true,"data":{"fileSize":-1,"fileData":"YWJj"}})", -1, kSilent},
    {"size_beyond_int", R"({"success":true,"data":{"fileSize":2147483648,"fileData":"YWJj"}})", -1, kSilent},
    {"text_is_number", R"({"success":true,"data":{"fileSize":3,"fileData":5}})", -1, kNoFile},
};

using HostReply = TableTest<ReplyCase>;

TEST_P(HostReply, IsAFileOrAFailedTransfer) {
    fake::Answer("SendWebAPIToHost reply", fake::ParseJson(GetParam().reply));
    EXPECT_EQ(GetParam().result, PkgControl(ADDON_SERVICE_DEVICE_PACK).GetFileFromHost());
    EXPECT_EQ(fake::Lines(kAsk + GetParam().steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, HostReply, testing::ValuesIn(kReplyCases), CaseName<ReplyCase>);

struct FetchCase {
    const char* name;
    const char* answers;
    Steps steps;  // from the question whether there is a host
};

const std::string kUploadDir =
    "PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir";
const std::string kLog = "CVPrintf 0 null null addonsservice GetFileFromHost ";
const Steps kPaired = {"IsCmsPaired", kUploadDir + " 256 0"};
const Steps kSent = kPaired + Steps{"GetJsonAPIInfo ORVA.Camvora.AddOns LoadFile 1",
                                    R"(SendWebAPIToHost {"filePath":"/up/1"} true {} 40 null 0)"};

const FetchCase kFetchCases[] = {
    {"not_paired", R"({"IsCmsPaired":false})", {"IsCmsPaired"}},
    {"no_reply", R"({"SendWebAPIToHost":-1})",
     kSent + Steps{kLog + R"('Failed to send webapi to host [{"filePath":"/up/1"}].\n')"}},
    {"not_written",
     R"({"SendWebAPIToHost reply":{"success":true,"data":{"fileSize":3,"fileData":"YWJj"}},
         "WriteFileByBase64String":-1})",
     kSent + Steps{"WriteFileByBase64String /up/1 YWJj 3",
                   kLog + R"('Failed to write file = [/up/1],Size = [3]\n')"}},
    {"outside_the_upload_area",
     R"({"PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir":"/other"})",
     kPaired},
};

using Fetch = TableTest<FetchCase>;

TEST_P(Fetch, FailsWithoutUnpacking) {
    fake::AnswerEach(GetParam().answers);
    PkgControl package(ADDON_SERVICE_DEVICE_PACK);
    Json::Value result(Json::objectValue);
    EXPECT_EQ(
        -1, package.GetPkgInfo(fake::ParseJson(R"({"filePath":"/up/1","fileName":"a.spk"})"), result, true));
    EXPECT_EQ("invalid_file", result["errinfo"]["key"].asString());
    const Steps begin = {"BeginCriticalSection /tmp/cv_AddOns_Package_name1.lock 3000",
                         "lstat /var/packages/Camvora/target/device_pack.aside",
                         "lstat /var/packages/Camvora/target/device_pack.dropped"};
    const Steps end = {"EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_AddOns_Package_name1.lock"};
    EXPECT_EQ(fake::Lines(begin + GetParam().steps + end), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Fetch, testing::ValuesIn(kFetchCases), CaseName<FetchCase>);

}  // namespace
