// "Upload", "GetPkgInfo" and "LoadFile".
#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>

namespace {

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
    {"no_upload", fake::Authorized("Upload", R"({"addonsSpkFile":"a","addonsSpkFile_tmp":"/up/1"})"),
     kSelectFile},
};

using Upload = TableTest<UploadCase>;

TEST_P(Upload, NamesTheStoredFile) {
    EXPECT_EQ(GetParam().answer, fake::Serve(Process, GetParam().request));
}

INSTANTIATE_TEST_SUITE_P(, Upload, testing::ValuesIn(kUploadCases), CaseName<UploadCase>);

TEST(UploadOrder, ReadsFieldsThenFiles) {
    const fake::Session session;
    ExpectCalls(fake::Upload(R"({"x":"1"})", "{}"), {"APIUpload", "IsUploadRequest", "GetUploadParam null",
                                                     R"(GetUploadFile {"x":"1"})", kSelectFile});
}

TEST(GetPkgInfo, AnswersWithTheErrorInfo) {
    const fake::Session session;
    ExpectCalls(fake::Authorized("GetPkgInfo", R"({"service":6})"),
                {R"(GetParam pkgInfo "")", "GetParam service 0", "GetParam isRedirectCgi false",
                 "BeginCriticalSection /tmp/cv_AddOns_Package_name6.lock 3000",
                 "lstat /var/packages/Camvora/target/local_display.aside",
                 "lstat /var/packages/Camvora/target/local_display.dropped", "EndCriticalSection 0",
                 "RemoveFileIfExist /tmp/cv_AddOns_Package_name6.lock",
                 R"(SetError 400 {"errinfo":{"key":"invalid_file","param1":"","param2":"","param3":"",)"
                 R"("sec":"localdisplay"},"param1":"","param2":""})"});
}

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

    static std::string Inspect() {
        return fake::Serve(Process, fake::Authorized("GetPkgInfo", R"({"service":6,"isRedirectCgi":true,
            "pkgInfo":{"fileName":"a.spk","filePath":"/up/1"}})"));
    }

    const std::string kDir = "/var/packages/Camvora/target/cv_addOns_name6_host";

private:
    fake::Session session_;
};

TEST_F(FetchedPackage, IsUnpackedIntoADirectoryOfItsOwn) {
    EXPECT_EQ(R"(SetSuccess {"errinfo":null,"filePath":")" + kDir +
                  R"(/","maintainer":"maintainer","version":"version"})",
              Inspect());
    EXPECT_NE(std::string::npos, fake::Journal().find("lstat " + kDir + "/local_display/conf\n"));
    EXPECT_EQ(std::string::npos, fake::Journal().find("PLIBCFileExist"));  // the transfer has said it
}

TEST_F(FetchedPackage, ThatIsTooOldIsNamed) {
    fake::Answer("AddonsUpdate::IsVersionNewer version", false);
    EXPECT_NE(std::string::npos,
              Inspect().find(R"("param1":"Local Display","param2":"1.0","param3":"version")"));
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

using LoadFile = TableTest<LoadCase>;

TEST_P(LoadFile, MovesTheFileIntoTheAnswer) {
    fake::AnswerEach(GetParam().answers);
    ExpectCalls(
        fake::Authorized("LoadFile", R"({"filePath":"/up/1"})"),
        Steps{R"(GetParam filePath "")",
              "PLIBCFileGetKeyValue /var/packages/Camvora/target/etc/cv.conf addons_upload_dir 256 0"} +
            GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(, LoadFile, testing::ValuesIn(kLoadCases), CaseName<LoadCase>);

}  // namespace
