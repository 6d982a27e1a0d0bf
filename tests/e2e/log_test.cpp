// The diagnostic log: what a request has caused is found by its id, and secrets are not in it.
#include "e2e/appliance.h"
#include "e2e/processes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>

namespace e2e {
namespace {

class LogTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>(Appliance::WithTestModule({"--request-time", "1"}));
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    Json::Value LinesOf(const std::string& requestId) {
        return owner_.Get("/log?request=" + requestId).Data()["lines"];
    }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> LogTest::appliance_;

TEST_F(LogTest, LinesAreFoundByTheIdInTheReply) {
    const Answer first = owner_.Test("Log", Param("text", "said by the first"));
    const Answer second = owner_.Test("Log", Param("text", "said by the second"));
    const Json::Value lines = LinesOf(first.requestId);
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ("said by the first", lines[0]["text"].asString());
    EXPECT_EQ("testmodule", lines[0]["source"].asString());
    EXPECT_NE(first.requestId, second.requestId);
    EXPECT_EQ(0U, LinesOf("0000000000000000").size());
}

TEST_F(LogTest, EveryReplyHasAnIdOfItsOwn) {
    std::set<std::string> ids;
    for (const char* path : {"/api", "/health", "/nothing", "/log"}) {
        ids.insert(owner_.Get(path).requestId);
    }
    ids.insert(owner_.Test("Echo").requestId);
    EXPECT_EQ(5U, ids.size());
    EXPECT_EQ(0U, ids.count(""));
}

TEST_F(LogTest, AnAbnormalEndIsFoundByTheIdToo) {
    for (const char* method : {"Crash", "Hang", "Throw", "ThrowNumber", "StaySilent", "Exit"}) {
        const Answer answer = owner_.Test(method);
        EXPECT_EQ(1U, LinesOf(answer.requestId).size()) << method;
    }
}

TEST_F(LogTest, SecretsAreNotInAnyFile) {
    const std::string value = "value-of-a-parameter";
    const httplib::Headers cookie = {{"Cookie", "timestamp=value-of-a-cookie"}};
    for (const char* method : {"Echo", "Throw", "Crash", "StaySilent", "Nothing"}) {
        owner_.Call("TEST.Module", method, Param("cookie", value), cookie);
        HttpCalls(appliance_->Url(), "wrong-token")
            .Call("TEST.Module", method, Param("cookie", value), cookie);
    }
    owner_.Post("/api/TEST.Module/v1/Echo", R"({"cookie":"value-of-a-parameter)");
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(appliance_->PackagePath("target/@CVData"))) {
        const std::string text = entry.is_regular_file() ? ReadFile(entry.path()) : "";
        for (const std::string& secret :
             {appliance_->Token(), value, std::string("value-of-a-cookie"), std::string("wrong-token")}) {
            EXPECT_EQ(std::string::npos, text.find(secret)) << entry.path();
        }
    }
}

}  // namespace
}  // namespace e2e
