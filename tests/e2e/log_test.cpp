// The diagnostic log: what a request has caused is found by its id, and secrets are not in it.
#include "e2e/appliance.h"
#include "e2e/processes.h"

#include <set>

namespace e2e {
namespace {

class LogTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(Appliance::WithTestModule({"--request-time", "1"})); }

    Json::Value LinesOf(const std::string& requestId) {
        return owner_.Get("/log?request=" + requestId).Data()["lines"];
    }
};

TEST_F(LogTest, LinesAreFoundByTheIdInTheReply) {
    const Answer first = owner_.Test("Log", Param("text", "said by the first"));
    owner_.Test("Log", Param("text", "said by the second"));
    const Json::Value lines = LinesOf(first.requestId);
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ("said by the first", lines[0]["text"].asString());
    EXPECT_EQ("testmodule", lines[0]["source"].asString());
    EXPECT_EQ(0U, LinesOf("0000000000000000").size());
}

TEST_F(LogTest, EveryReplyHasAnIdOfItsOwn) {
    std::set<std::string> ids = {"", owner_.Test("Echo").requestId};
    for (const char* path : {"/api", "/health", "/nothing", "/log"}) {
        ids.insert(owner_.Get(path).requestId);
    }
    ids.insert(ToAnswer(owner_.Client().Head("/api", {{"Connection", "close"}})).requestId);
    EXPECT_EQ(7U, ids.size());
}

TEST_F(LogTest, AnAbnormalEndIsFoundByTheIdToo) {
    for (const char* method :
         {"Crash", "Hang", "HangWithoutAlarm", "Throw", "ThrowNumber", "StaySilent", "Exit"}) {
        EXPECT_EQ(1U, LinesOf(owner_.Test(method).requestId).size()) << method;
    }
}

TEST_F(LogTest, SecretsAreNotInAnyFile) {
    const Json::Value params = Param("cookie", "value-of-a-parameter");
    const httplib::Headers cookie = {{"Cookie", "timestamp=value-of-a-cookie"}};
    HttpCalls other(appliance_->Url(), "wrong-token");
    for (const char* method : {"Echo", "Throw", "Crash", "StaySilent", "Nothing"}) {
        owner_.Call("TEST.Module", method, params, cookie);
        other.Call("TEST.Module", method, params, cookie);
    }
    owner_.Post("/api/TEST.Module/v1/Echo", R"({"cookie":"value-of-a-parameter)");
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(appliance_->PackagePath("target/@CVData"))) {
        const std::string text = entry.is_regular_file() ? ReadFile(entry.path()) : "";
        for (const char* secret : {appliance_->Token().c_str(), "value-of-", "wrong-token"}) {
            EXPECT_EQ(std::string::npos, text.find(secret)) << entry.path();
        }
    }
}

}  // namespace
}  // namespace e2e
