// "upload": what is sent, and what is said of what comes back.
#include "commandcase.h"

namespace {

TEST(UploadTest, SendsTheFileThenAsksWhatItIs) {
    const TemporaryFolder folder;
    const std::string content(200'000, '\0');
    folder.Write("a\"\r.spk", content);
    FakeAppliance appliance(
        Usual({{"GetPkgInfo",
                Success(R"({"version":"1.6","maintainer":"M\u001b","filePath":"/w/","errinfo":null})")}}));
    const Outcome sent = Program({CAMVORACTL, "upload", folder.PathOf("a\"\r.spk"), "local_display"},
                                 {"CAMVORA_DIR=" + appliance.Dir()})
                             .Wait();
    EXPECT_EQ(0, sent.status) << sent.err;
    EXPECT_EQ("Sending a\"\\r.spk\nThe appliance unpacks and checks it\n", sent.err);
    ASSERT_EQ(3U, appliance.Requests().size());
    EXPECT_EQ("Upload Bearer secret addonsSpkFile=a%22%0D.spk:" + content, appliance.Requests()[1]);
    EXPECT_EQ(R"(GetPkgInfo Bearer secret {"pkgInfo":{"fileName":"a","filePath":"/u/1"},"service":6})",
              appliance.Requests()[2]);
}

TEST(UploadTest, EndsWhenItIsInterrupted) {
    FakeAppliance appliance(Usual({{"Upload", {200, " ", "", true}}}));
    const Program run({CAMVORACTL, "upload", SAMPLES "/device_pack-2.2.0-0140.spk", "6"},
                      {"CAMVORA_DIR=" + appliance.Dir()});
    appliance.AwaitRequests(2);
    kill(run.Pid(), SIGINT);
    const Outcome outcome = run.Wait();
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ("Sending device_pack-2.2.0-0140.spk\ncamvoractl: Interrupted\n", outcome.err);
}

constexpr char kLine[] = "upload " SAMPLES "/device_pack-2.2.0-0140.spk 6";

FakeReplies Refused(const std::string& errInfo) {
    return Usual({{"GetPkgInfo", Error(200, R"({"code":400,"data":{"errinfo":)" + errInfo + "}}")}});
}

Text SaysInTheEnd(const std::string& words) {
    return testing::EndsWith(words + "\n" + kWhy);
}

const CommandCase kRefusalCases[] = {
    {"platform", kLine,
     Refused(R"({"sec":"device_pack","key":"plat_not_support","param1":"plat1 \u001bplat2"})"), 4, "",
     SaysInTheEnd("it is not for the platform of this appliance, which is plat1 \\x1Bplat2")},
    {"main_too_old", kLine, Refused(R"({"sec":"device_pack","key":"cv_ver_too_old","param1":"4.0"})"), 4, "",
     SaysInTheEnd("it needs Camvora 4.0 or newer")},
    {"too_old", kLine,
     Refused(R"({"sec":"addons","key":"forbid_downgrade","param1":"%2","param2":"1.4","param3":"1.3"})"), 4,
     "", SaysInTheEnd("%2 has to be 1.4 or newer, and this is 1.3")},
    {"no_file", kLine, Refused(R"({"sec":"device_pack","key":"sel_file"})"), 4, "",
     SaysInTheEnd("The appliance does not take device_pack-2.2.0-0140.spk: no file arrived")},
    {"unknown", kLine, Refused(R"({"sec":"addons","key":"sel_file","param1":7})"), 4, "",
     SaysInTheEnd("addons/sel_file\nerrinfo.key     sel_file\nerrinfo.param1  7\nerrinfo.sec     addons")},
    {"without_a_reason", kLine, Refused("null"), 1, "",
     SaysInTheEnd("GetPkgInfo failed (error 400): the appliance could not do it\nerrinfo  -")},
    {"nowhere_stored", kLine, Usual({{"Upload", Success("null")}}), 1, "",
     testing::EndsWith("the answer names no stored file\n")},
    {"no_file_here", "upload /no/such 6", Usual(), 3, "", testing::_, testing::IsEmpty()},
};

INSTANTIATE_TEST_SUITE_P(Upload, CommandTest, testing::ValuesIn(kRefusalCases), NameOf);

}  // namespace
