// "upload": what is sent, and what is said of what comes back.
#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr char kServices[] =
    R"({"list":[{"service":6,"info":{"shortName":"local_display","name":"Local Display"}}]})";
constexpr char kStored[] = R"({"pkgInfo":{"fileName":"a","filePath":"/u/1"}})";

class UploadTest : public testing::Test {
protected:
    FakeReplies Replies(const FakeReply& upload, const FakeReply& info) const {
        return {{"List", Success(kServices)}, {"Upload", upload}, {"GetPkgInfo", info}};
    }

    std::string Line(const std::string& name = "x.spk") const {
        return "upload " + dir_.PathOf(name) + " local_display";
    }

    TemporaryFolder dir_;
};

TEST_F(UploadTest, SendsTheFileThenAsksWhatItIs) {
    const std::string content(200'000, '\0');
    dir_.Write("a\"\r.spk", content);
    FakeAppliance appliance(
        Replies(Success(kStored),
                Success(R"({"version":"1.6","maintainer":"M\u001b","filePath":"/w/","errinfo":null})")));
    const Outcome sent = Program({CAMVORACTL, "upload", dir_.PathOf("a\"\r.spk"), "local_display"},
                                 {"CAMVORA_DIR=" + appliance.Dir()})
                             .Wait();
    EXPECT_EQ(0, sent.status) << sent.err;
    EXPECT_EQ(
        "Add-on          Local Display\n"
        "Version         1.6\n"
        "Maintainer      M\\x1B\n"
        "Work directory  /w/\n",
        sent.out);
    EXPECT_EQ("Sending a\"\\r.spk\nThe appliance unpacks and checks it\n", sent.err);
    ASSERT_EQ(3U, appliance.Requests().size());
    EXPECT_EQ("Upload Bearer secret addonsSpkFile=a%22%0D.spk:" + content, appliance.Requests()[1]);
    EXPECT_EQ(R"(GetPkgInfo Bearer secret {"pkgInfo":{"fileName":"a","filePath":"/u/1"},"service":6})",
              appliance.Requests()[2]);
}

FakeReply Refused(const std::string& errInfo) {
    return Error(200, R"({"code":400,"data":{"errinfo":)" + errInfo + "}}");
}

struct RefusalCase {
    const char* name;
    FakeReply upload;
    FakeReply info;
    int status;
    std::string err;  // its end
};

const RefusalCase kRefusalCases[] = {
    {"platform", Success(kStored),
     Refused(R"({"sec":"device_pack","key":"plat_not_support","param1":"plat1 \u001bplat2"})"), 4,
     "it is not for the platform of this appliance, which is plat1 \\x1Bplat2\nThe request was r1\n"},
    {"main_too_old", Success(kStored),
     Refused(R"({"sec":"device_pack","key":"cv_ver_too_old","param1":"4.0"})"), 4,
     "it needs Camvora 4.0 or newer\nThe request was r1\n"},
    {"too_old", Success(kStored),
     Refused(R"({"sec":"addons","key":"forbid_downgrade","param1":"%2","param2":"1.4","param3":"1.3"})"), 4,
     "%2 has to be 1.4 or newer, and this is 1.3\nThe request was r1\n"},
    {"no_file", Refused(R"({"sec":"device_pack","key":"sel_file"})"), Success("null"), 4,
     "The appliance does not take x.spk: no file arrived\nThe request was r1\n"},
    {"unknown", Success(kStored), Refused(R"({"sec":"addons","key":"sel_file","param1":7})"), 4,
     "The appliance does not take x.spk: addons/sel_file\n"
     "errinfo.key     sel_file\nerrinfo.param1  7\nerrinfo.sec     addons\nThe request was r1\n"},
    {"without_a_reason", Success(kStored), Refused("null"), 1,
     "GetPkgInfo failed (error 400): the appliance could not do it\nerrinfo  -\nThe request was r1\n"},
    {"nowhere_stored", Success("null"), Success("null"), 1, "the answer names no stored file\n"},
};

class UploadRefusalTest : public UploadTest, public testing::WithParamInterface<RefusalCase> {};

TEST_P(UploadRefusalTest, IsSaidInPlainWords) {
    dir_.Write("x.spk", "");
    const FakeAppliance appliance(Replies(GetParam().upload, GetParam().info));
    const Outcome outcome = appliance.Run(Line());
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_EQ("", outcome.out);
    const std::size_t tailSize = std::min(outcome.err.size(), GetParam().err.size());
    EXPECT_EQ(GetParam().err, outcome.err.substr(outcome.err.size() - tailSize));
}

INSTANTIATE_TEST_SUITE_P(All, UploadRefusalTest, testing::ValuesIn(kRefusalCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_F(UploadTest, AsksNobodyWithoutAFile) {
    FakeAppliance appliance({});
    EXPECT_EQ(3, appliance.Run(Line()).status);
    EXPECT_EQ(0U, appliance.Requests().size());
}

}  // namespace
