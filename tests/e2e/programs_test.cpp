// Programs that handlers run: how each ended can be looked up, and none outlives its request.
#include "e2e/appliance.h"
#include "e2e/processes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace e2e {
namespace {

namespace fs = std::filesystem;

class ProgramsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>(Appliance::WithTestModule({"--request-time", "2"}));
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    Answer Exec(const std::string& path, const std::vector<std::string>& arguments) {
        Json::Value params = Param("path", path);
        for (const std::string& argument : arguments) {
            params["arguments"].append(argument);
        }
        return owner_.Test("Exec", params);
    }
    Json::Value ProgramsOf(const Answer& answer) {
        return owner_.Get("/programs?request=" + answer.requestId).Data()["programs"];
    }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> ProgramsTest::appliance_;

TEST_F(ProgramsTest, AreRecordedWithTheirRequest) {
    const Answer failed = Exec("/bin/sh", {"-c", "echo printed; test \"$CAMVORA_REQUEST_ID\" && exit 7", ""});
    EXPECT_EQ(7, failed.Data()["exitStatus"].asInt());
    const Answer missing = Exec("/bin/none", {});
    EXPECT_EQ(-1, missing.Data()["exitStatus"].asInt());
    const Json::Value programs = ProgramsOf(failed);
    ASSERT_EQ(1U, programs.size());
    EXPECT_EQ("/bin/sh", programs[0]["path"].asString());
    ASSERT_EQ(3U, programs[0]["arguments"].size());
    EXPECT_EQ("-c", programs[0]["arguments"][0].asString());
    EXPECT_EQ("", programs[0]["arguments"][2].asString());
    EXPECT_EQ(7, programs[0]["exitStatus"].asInt());
    EXPECT_EQ(failed.requestId, programs[0]["request"].asString());
    EXPECT_GT(programs[0]["peakMemoryKiB"].asInt(), 0);
    EXPECT_EQ(-2, ProgramsOf(missing)[0]["exitStatus"].asInt()) << "there is none";
    EXPECT_EQ(0U, ProgramsOf(missing)[0]["arguments"].size());
    const Json::Value all = owner_.Get("/programs").Data()["programs"];
    EXPECT_EQ(missing.requestId, all[all.size() - 1]["request"].asString());
    EXPECT_EQ(failed.requestId, all[all.size() - 2]["request"].asString());
    EXPECT_EQ(401, appliance_->Stranger().Get("/programs?request=" + failed.requestId).status);
    EXPECT_NE(std::string::npos,
              ReadFile(appliance_->PackagePath("target/@CVData/log/programs.log")).find("printed\n"));
}

TEST_F(ProgramsTest, EndWithTheirRequest) {
    const auto isThere = [] {
        const std::vector<pid_t> all = Descendants(appliance_->Supervisor());
        return std::any_of(all.begin(), all.end(), [](pid_t pid) { return NameOf(pid) == "sleep"; });
    };
    const auto call = std::async(std::launch::async, [this] {
        return Exec("/bin/sh", {"-c", "trap '' TERM; sleep 1000 & sleep 1000"}).Code();
    });
    EXPECT_TRUE(WaitUntil(isThere));
    call.wait();
    EXPECT_TRUE(WaitUntil([&] { return !isThere(); }));
}

TEST_F(ProgramsTest, TarIsAllOrNothing) {
    const fs::path folder = appliance_->PackagePath("target/work");
    fs::create_directories(folder);
    std::ofstream(folder / "INFO") << "text";
    EXPECT_EQ(0, Exec("/bin/tar", {"-czf", "/tmp/a.tgz", "/var/packages/Camvora/target/device_pack"})
                     .Data()["exitStatus"]
                     .asInt());
    const std::vector<std::string> unpack = {"-C", "/var/packages/Camvora/target/work/", "-xvf",
                                             "/tmp/a.tgz"};
    EXPECT_EQ(0, Exec("/bin/sh", {"-c", "head -c 100 /tmp/a.tgz >/tmp/b.tgz"}).Data()["exitStatus"].asInt());
    std::vector<std::string> unpackCut = unpack;
    unpackCut.back() = "/tmp/b.tgz";
    EXPECT_NE(0, Exec("/bin/tar", unpackCut).Data()["exitStatus"].asInt());
    EXPECT_EQ(1, std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    const Answer whole = Exec("/bin/tar", unpack);
    EXPECT_EQ(0, whole.Data()["exitStatus"].asInt());
    EXPECT_TRUE(fs::exists(folder / "var/packages/Camvora/target/device_pack/conf"));
    EXPECT_EQ(2, std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    EXPECT_EQ(unpack[1], ProgramsOf(whole)[0]["arguments"][1].asString()) << "as the caller gave it";
}

}  // namespace
}  // namespace e2e
