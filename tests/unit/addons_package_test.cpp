// "Upload", "GetPkgInfo" and "LoadFile".
#include "fake/journal.h"
#include "fake/script.h"
#include "fake/session.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Steps = std::vector<std::string>;

std::string After(const Steps& begin, const Steps& steps) {
    return fake::Lines(fake::Admission()) + fake::Lines(begin) + fake::Lines(steps);
}

struct UploadCase {
    const char* name;
    ORVA::RequestContent request;
    const char* answer;
};

const char kSelectFile[] =
    R"(SetError 400 {"errinfo":{"key":"sel_file","sec":"device_pack"},"param1":"","param2":""})";

const UploadCase kUploadCases[] = {
    {"file", fake::Upload("{}", R"({"addonsSpkFile":"a b.zip","addonsSpkFile_tmp":"/up/1"})"),
     R"(SetSuccess {"pkgInfo":{"fileName":"a b.zip","filePath":"/up/1"}})"},
    {"among_others",
     fake::Upload(R"({"x":"1"})", R"({"f":"f","f_tmp":"/up/0","addonsSpkFile":"","addonsSpkFile_tmp":""})"),
     R"(SetSuccess {"pkgInfo":{"fileName":"","filePath":""}})"},
    {"other_field", fake::Upload("{}", R"({"file":"a.spk","file_tmp":"/up/1"})"), kSelectFile},
    {"not_stored", fake::Upload("{}", R"({"addonsSpkFile":"a.spk"})"), kSelectFile},
    {"without_a_name", fake::Upload("{}", R"({"addonsSpkFile_tmp":"/up/1"})"), kSelectFile},
    {"empty_form", fake::Upload("{}", "{}"), kSelectFile},
    {"no_upload", fake::Authorized("Upload", R"({"addonsSpkFile":"a","addonsSpkFile_tmp":"/up/1"})"),
     kSelectFile},
};

class Upload : public testing::TestWithParam<UploadCase> {
    fake::Session session_;
};

TEST_P(Upload, NamesTheStoredFile) {
    EXPECT_EQ(GetParam().answer, fake::Serve(Process, GetParam().request));
}

INSTANTIATE_TEST_SUITE_P(, Upload, testing::ValuesIn(kUploadCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(UploadOrder, ReadsFieldsThenFiles) {
    const fake::Session session;
    fake::Serve(Process, fake::Upload(R"({"x":"1"})", "{}"));
    EXPECT_EQ(After({"APIUpload", "IsUploadRequest", "GetUploadParam null", R"(GetUploadFile {"x":"1"})"},
                    {kSelectFile}),
              fake::Journal());
}

const Steps kReadPkgInfo = {R"(GetParam pkgInfo "")",
                            "GetParam service 0",
                            "GetParam isRedirectCgi false",
                            "GetServiceStr 6",
                            "BeginCriticalSection /tmp/cv_AddOns_Package_name6.lock 3000",
                            "lstat /var/packages/Camvora/target/local_display.aside",
                            "lstat /var/packages/Camvora/target/local_display.dropped"};
const Steps kInvalidFile = {
    "EndCriticalSection 0", "RemoveFileIfExist /tmp/cv_AddOns_Package_name6.lock",
    R"(SetError 400 {"errinfo":{"key":"invalid_file","param1":"","param2":"","param3":"",)"
    R"("sec":"localdisplay"},"param1":"","param2":""})"};

TEST(GetPkgInfo, AnswersWithTheErrorInfo) {
    const fake::Session session;
    fake::Serve(Process, fake::Authorized("GetPkgInfo", R"({"service":6})"));
    EXPECT_EQ(After(kReadPkgInfo, kInvalidFile), fake::Journal());
}

TEST(GetPkgInfo, FetchesWhenRedirected) {
    const fake::Session session;
    fake::Answer("IsCmsPaired", false);
    fake::Serve(Process, fake::Authorized("GetPkgInfo", R"({"service":6,"isRedirectCgi":true,
        "pkgInfo":{"fileName":"a.spk","filePath":"/up/1"}})"));
    Steps steps = {"IsCmsPaired"};
    steps.insert(steps.end(), kInvalidFile.begin(), kInvalidFile.end());
    EXPECT_EQ(After(kReadPkgInfo, steps), fake::Journal());
}

TEST(GetPkgInfo, AnswersWithWhatThePackageSays) {
    const fake::Session session;
    const std::string value = "PLIBCFileGetKeyValue /var/packages/Camvora/";
    const std::string dir = "target/cv_addOns_name1";
    fake::Answer(value + dir + "/INFO package", "CamvoraDevicePack");
    fake::Answer(value + "target/etc/cv.conf dp_min_ver", "1.0");
    for (const std::string& key : {dir + "/INFO arch", std::string("INFO arch"), std::string("INFO version"),
                                   dir + "/device_pack/conf cv_min_ver", dir + "/device_pack/conf version",
                                   dir + "/device_pack/conf maintainer"}) {
        fake::Answer(value + key, "text");
    }
    EXPECT_EQ(R"(SetSuccess {"errinfo":null,"filePath":"/var/packages/Camvora/target/cv_addOns_name1/",)"
              R"("maintainer":"text","version":"text"})",
              fake::Serve(Process, fake::Authorized("GetPkgInfo", R"({"service":1,
                  "pkgInfo":{"fileName":"a.spk","filePath":"/up/1"}})")));
}

struct LoadCase {
    const char* name;
    const char* answers;
    Steps steps;  // after the question for the upload area
};

const char kReadFailed[] = R"(CVPrintf 0 null null addons HandleLoadFile 'Failed to read file[/up/1]!\n')";
const char kNothing[] = R"(SetSuccess {"fileData":"","fileSize":0})";

const LoadCase kLoadCases[] = {
    {"file",
     R"({"ReadContentFromFileToBuf":"a\u0000c"})",
     {"ReadContentFromFileToBuf /up/1 true", R"(HttpBase64EncodeUnsigned 'a\x00c')",
      "PLIBCExec /bin/rm -rf /up/1", R"(SetSuccess {"fileData":"base64 of a\u0000c","fileSize":3})"}},
    {"empty_file",
     R"({"ReadContentFromFileToBuf":""})",
     {"ReadContentFromFileToBuf /up/1 true", "HttpBase64EncodeUnsigned ''", "PLIBCExec /bin/rm -rf /up/1",
      R"(SetSuccess {"fileData":"base64 of ","fileSize":0})"}},
    {"unreadable", "{}", {"ReadContentFromFileToBuf /up/1 true", kReadFailed, kNothing}},
    {"outside_the_upload_area",
     R"({"PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir":"/other",
         "ReadContentFromFileToBuf":"abc"})",
     {kReadFailed, kNothing}},
};

class LoadFile : public testing::TestWithParam<LoadCase> {
    fake::Session session_;
};

TEST_P(LoadFile, MovesTheFileIntoTheAnswer) {
    fake::AnswerEach(GetParam().answers);
    fake::Serve(Process, fake::Authorized("LoadFile", R"({"filePath":"/up/1"})"));
    EXPECT_EQ(After({R"(GetParam filePath "")",
                     "PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir 256 0"},
                    GetParam().steps),
              fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, LoadFile, testing::ValuesIn(kLoadCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
