// Files in forms: they go to the upload area without being held in memory, and leave nothing there that
// nobody knows of.
#include "e2e/appliance.h"
#include "e2e/ctl.h"
#include "e2e/packages.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <iterator>
#include <string>
#include <vector>

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr char kPath[] = "/api/TEST.Module/v1/Upload";

class UploadTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start(Appliance::WithTestModule({"--request-time", "1", "--upload-limit", "1000000000000000"}));
    }

    void SetUp() override {
        for (const fs::path& file : Files()) {
            fs::remove(file);
        }
    }

    static std::vector<fs::path> Files() {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(Area())) {
            files.push_back(entry.path());
        }
        return files;
    }
    static fs::path Area() { return appliance_->PackagePath(kUploads); }

    // A path inside the appliance as one outside.
    static fs::path Outside(const Json::Value& path) { return Area() / fs::path(path.asString()).filename(); }

    static Answer Upload(const httplib::MultipartFormDataItems& form) {
        return ToAnswer(appliance_->Owner().Client().Post(kPath, form));
    }

    // The owner's request up to the content of a file.
    static std::string FormBegin(const std::string& framing) {
        return std::string("POST ") + kPath + " HTTP/1.1\r\nAuthorization: Bearer " + appliance_->Token() +
               "\r\nContent-Type: multipart/form-data; boundary=b\r\n" + framing +
               "--b\r\nContent-Disposition: form-data; name=\"f\"; filename=\"x\"\r\n\r\n";
    }
};

TEST_F(UploadTest, AHandlerSeesTextsAndStoredFiles) {
    const std::string one = Content(300'000, 1);
    const std::string two = std::string("\r\n--\0\r\n", 7) + Content(70'000, 2);
    const Json::Value form = Upload({{"text", "12 \xc3\xa4", "", ""},
                                     {"one", "is followed by another", "first", ""},
                                     {"one", one, "../../Ger\xc3\xa4t.spk", "text/plain"},
                                     {"two", two, "/etc/passwd", ""},
                                     {"empty", "", "none", ""},
                                     {"one_tmp", "", "/etc/passwd", ""},
                                     {"no file", "", "", ""}})
                                 .Data();
    EXPECT_EQ("12 \xc3\xa4", form["text"].asString());
    EXPECT_EQ("", form["no file"].asString());
    EXPECT_FALSE(form.isMember("no file_tmp"));
    EXPECT_EQ("../../Ger\xc3\xa4t.spk", form["one"].asString());
    EXPECT_EQ("/etc/passwd", form["two"].asString());
    EXPECT_TRUE(one == ReadFile(Outside(form["one_tmp"])));
    EXPECT_TRUE(two == ReadFile(Outside(form["two_tmp"])));
    EXPECT_EQ(0U, fs::file_size(Outside(form["empty_tmp"])));
    EXPECT_EQ(4U, Files().size());
    EXPECT_EQ(0U, form["one_tmp"].asString().find("/var/packages/Camvora/target/@CVData/upload/"));
    EXPECT_EQ(fs::perms(0600), fs::status(Outside(form["one_tmp"])).permissions());
    EXPECT_EQ(fs::perms(0700), fs::status(Area()).permissions());
}

TEST_F(UploadTest, AnErrorOrAnEndedRequestLeavesNoFile) {
    EXPECT_EQ(400, Upload({{"f", "content", "a", ""}, {"fail", "1", "", ""}}).Code());
    EXPECT_TRUE(Files().empty());
    EXPECT_EQ(1012, Upload({{"f", "content", "a", ""}, {"ms", "5000", "", ""}}).Code());
    EXPECT_TRUE(Files().empty());
    const httplib::MultipartFormDataItems form = {{"f", "content", "a", ""}};
    EXPECT_EQ(1003, ToAnswer(appliance_->Owner().Client().Post("/api/TEST.Module/v1/None", form)).Code());
    EXPECT_TRUE(Files().empty());
}

TEST_F(UploadTest, AStrangersFileIsSmall) {
    const httplib::MultipartFormDataItems form = {{"f", Content(140'000, 1), "a", ""}};
    EXPECT_EQ(1006, ToAnswer(appliance_->Stranger().Client().Post(kPath, form)).Code());
    EXPECT_TRUE(Files().empty());
}

TEST_F(UploadTest, WhatTheDiskCannotHoldIsRefusedBeforeItIsSent) {
    RawConnection connection(appliance_->Url());
    connection.Send(FormBegin("Content-Length: 900000000000000\r\n\r\n"));
    EXPECT_NE(std::string::npos, connection.ReceiveUntil("}}").find(R"("code":1020)"));
    EXPECT_TRUE(Files().empty());
}

TEST_F(UploadTest, AClientThatBreaksOffLeavesNoFile) {
    for (const char* framing :
         {"Content-Length: 10000000\r\n\r\n", "Transfer-Encoding: chunked\r\n\r\n100000\r\n"}) {
        RawConnection connection(appliance_->Url());
        connection.Send(FormBegin(framing) + Content(600'000, 1));
        EXPECT_TRUE(WaitUntil([] { return Files().size() == 1 && fs::file_size(Files()[0]) >= 262'144; }));
    }
    EXPECT_TRUE(WaitUntil([] { return Files().empty(); }));
}

TEST_F(UploadTest, AKilledHttpProcessLeavesWholeFilesOnly) {
    EXPECT_TRUE(Upload({{"f", "whole", "a", ""}}).Succeeded());
    RawConnection connection(appliance_->Url());
    connection.Send(FormBegin("Content-Length: 10000000\r\n\r\n") + Content(600'000, 1));
    ASSERT_TRUE(WaitUntil([] { return Files().size() == 2; }));
    kill(appliance_->HttpProcess(), SIGKILL);
    EXPECT_TRUE(WaitUntil([] { return Files().size() == 1; }));
    EXPECT_EQ("whole", ReadFile(Files().at(0)));
}

TEST_F(UploadTest, LargeFilesAreNotHeldInMemory) {
    const std::string content = Content(64 * kMiB, 3);
    EXPECT_TRUE(Upload({{"f", "warm", "a", ""}}).Succeeded());
    const pid_t http = appliance_->HttpProcess();
    const long before = PeakMemoryKiB(http);
    const Answer answer = Upload({{"f", content, "a", ""}});
    ASSERT_EQ(200, answer.status) << answer.Text();
    EXPECT_TRUE(content == ReadFile(Outside(answer.Data()["f_tmp"])));
    EXPECT_LT(PeakMemoryKiB(http) - before, 2 * 1024);
}

TEST_F(UploadTest, FormsAtTheSameTimeAreNotMixedUp) {
    std::vector<std::future<bool>> uploads;
    for (unsigned seed = 0; seed < 4; ++seed) {
        uploads.push_back(std::async(std::launch::async, [seed] {
            const std::string content = Content(5 * kMiB + seed, seed);
            const Json::Value form = Upload({{"f", content, std::to_string(seed), ""}}).Data();
            return form["f"].asString() == std::to_string(seed) &&
                   content == ReadFile(Outside(form["f_tmp"]));
        }));
    }
    for (auto& upload : uploads) {
        EXPECT_TRUE(upload.get());
    }
    EXPECT_EQ(4U, Files().size());
}

TEST_F(UploadTest, WhatNobodyTookIsRemovedAfterADay) {
    const fs::path old = Outside(Upload({{"f", "old", "a", ""}}).Data()["f_tmp"]);
    const fs::path young = Outside(Upload({{"f", "young", "a", ""}}).Data()["f_tmp"]);
    const fs::path beingWritten = Area() / "0123456789abcdef.part";
    fs::copy_file(old, beingWritten);
    const auto now = fs::file_time_type::clock::now();
    fs::last_write_time(old, now - std::chrono::hours(25));
    fs::last_write_time(beingWritten, now - std::chrono::hours(25));
    fs::last_write_time(young, now - std::chrono::hours(23));
    EXPECT_TRUE(WaitUntil([&] { return !fs::exists(old); }));
    EXPECT_TRUE(fs::exists(young));
    EXPECT_TRUE(fs::exists(beingWritten));
}

// More than can be sent before the host gives the connection up.
TEST(ClientTest, HearsOfARefusalWhileItSends) {
    const Appliance appliance;
    const TemporaryFolder folder;
    folder.Write("x.spk", "");
    fs::resize_file(folder.PathOf("x.spk"), 100'000 * kMiB);
    const Outcome outcome = StartCtl(appliance, {"upload", folder.PathOf("x.spk"), "local_display"}).Wait();
    EXPECT_EQ(4, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find("Upload failed (error 1006): The request is too large.\n"))
        << outcome.err;
    EXPECT_EQ(0U, UploadCount(appliance));
}

}  // namespace
}  // namespace e2e
