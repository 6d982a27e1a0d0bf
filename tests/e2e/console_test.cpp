// How the web console is served, and who gets in.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <filesystem>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

namespace e2e {
namespace {

class ConsoleTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start({"--heartbeat", "1"}); }

    std::string Code() { return owner_.Post("/session/codes", "").Data()["code"].asString(); }

    // Signs in. Returns the Set-Cookie header.
    std::string SignIn() {
        const auto result =
            stranger_.Client().Post("/session", R"({"code":")" + Code() + "\"}", "application/json");
        EXPECT_EQ(200, result->status);
        return result->get_header_value("Set-Cookie");
    }

    httplib::Headers Session(const std::string& origin = "") {
        const std::string cookie = SignIn();
        httplib::Headers headers = {{"Cookie", cookie.substr(0, cookie.find(';'))}};
        if (!origin.empty()) {
            headers.emplace("Origin", origin);
        }
        return headers;
    }

    Answer Get(const std::string& path, const httplib::Headers& headers) {
        return ToAnswer(stranger_.Client().Get(path, headers));
    }
};

TEST_F(ConsoleTest, ACodeSignsInOnce) {
    const std::string body = R"({"code":")" + Code() + "\"}";
    const auto first = stranger_.Client().Post("/session", body, "application/json");
    const std::regex form(
        R"(camvora-session-[0-9a-f]{8}=\S+; Path=/; Max-Age=43200; HttpOnly; SameSite=Strict)");
    EXPECT_TRUE(std::regex_match(first->get_header_value("Set-Cookie"), form));
    const auto second = stranger_.Client().Post("/session", body, "application/json");
    EXPECT_EQ(403, second->status);
    EXPECT_EQ(1024, ToAnswer(second).Code());
    EXPECT_FALSE(second->has_header("Set-Cookie"));
    for (const char* none : {"", "{}", R"({"code":1})", R"({"code":""})"}) {
        EXPECT_EQ(403, stranger_.Post("/session", none).status) << none;
    }
}

TEST_F(ConsoleTest, ASessionReadsWhatTheOwnerReads) {
    const Answer appliance = Get("/appliance", Session());
    EXPECT_TRUE(appliance.Succeeded());
    EXPECT_EQ("NVR4", appliance.Data()["model"].asString());
    EXPECT_NE("", appliance.Data()["name"].asString());
    EXPECT_NE("", appliance.Data()["version"].asString());
    EXPECT_FALSE(appliance.Data()["blCmsHost"].asBool());
    EXPECT_TRUE(appliance.Data()["blStarted"].asBool());
    EXPECT_EQ(401, Get("/appliance", {}).status);
    EXPECT_EQ(401, Get("/appliance", {{"Cookie", "camvora-session-00000000=1.2"}}).status);
}

struct OriginCase {
    std::string origin;
    bool admitted;
};

TEST_F(ConsoleTest, OnlyTheConsoleItselfChangesAnything) {
    const std::string host = appliance_->Url().substr(appliance_->Url().find("//"));
    for (const OriginCase& c : {OriginCase{"http:" + host, true},
                                {"https:" + host, true},
                                {"", false},
                                {"null", false},
                                {"http://127.0.0.1:1", false},
                                {"http:" + host + "0", false}}) {
        const Answer answer = stranger_.AddOns("SetAutoUpdate", Param("blEnable", false), Session(c.origin));
        EXPECT_EQ(c.admitted, answer.Succeeded()) << c.origin;
        EXPECT_TRUE(c.admitted || answer.Code() == 105) << answer.Code();
    }
    EXPECT_EQ(401, stranger_.Post("/session/codes", "", Session("http:" + host)).status)
        << "a session begets another";
    const httplib::Headers foreign = {{"Origin", "http://127.0.0.1:1"}};
    EXPECT_EQ(401, stranger_.Post("/session", R"({"code":"wrong"})", foreign).status)
        << "codes can be used up";
}

TEST_F(ConsoleTest, SigningOutEndsTheSessionAndItsStreams) {
    const httplib::Headers session = Session("http:" + appliance_->Url().substr(5));
    RawConnection stream =
        OpenStream(appliance_->Url(), "", "Cookie: " + session.find("Cookie")->second + "\r\n");
    EXPECT_NE(std::string::npos, stream.ReceiveUntil("\n\n").find("event: snapshot"));
    const auto end = stranger_.Client().Delete("/session", session);
    EXPECT_NE(std::string::npos, end->get_header_value("Set-Cookie").find("=; Path=/; Max-Age=0;"));
    EXPECT_EQ(401, Get("/appliance", session).status);
    stream.ReceiveAll();
    EXPECT_TRUE(stream.IsAtEnd());
}

TEST_F(ConsoleTest, AHundredOfThemLeaveNothingBehind) {
    const std::filesystem::path descriptors = "/proc/" + std::to_string(appliance_->HttpProcess()) + "/fd";
    const auto count = [&descriptors] {
        return std::distance(std::filesystem::directory_iterator(descriptors),
                             std::filesystem::directory_iterator());
    };
    const auto before = count();
    {
        std::vector<RawConnection> streams;
        for (int i = 0; i < 100; ++i) {
            streams.push_back(OpenStream(appliance_->Url(), appliance_->Token()));
            EXPECT_NE(std::string::npos, streams.back().ReceiveUntil("data:").find("event: snapshot"));
        }
        EXPECT_EQ(before + 100, count());
        EXPECT_TRUE(owner_.AddOns("List").Succeeded());
    }
    EXPECT_TRUE(WaitUntil([&] { return count() <= before; })) << count() - before;
}

TEST_F(ConsoleTest, ItsFilesAreOpenToAllAndHoldNoMore) {
    const auto page = stranger_.Client().Get("/");
    ASSERT_EQ(200, page->status);
    EXPECT_EQ("text/html; charset=utf-8", page->get_header_value("Content-Type"));
    EXPECT_EQ(
        0U, page->get_header_value("Content-Security-Policy").find("default-src 'none'; script-src 'self'"));
    const auto again =
        stranger_.Client().Get("/", httplib::Headers{{"If-None-Match", page->get_header_value("ETag")}});
    EXPECT_EQ(304, again->status);
    EXPECT_EQ("", again->body);
    for (const char* path : {"/console/", "/console/index.html", "/console/none.js", "/console/../token",
                             "/console/..%2f..%2fetc%2fcv.conf", "/console/CMakeLists.txt"}) {
        EXPECT_EQ(404, stranger_.Get(path).status) << path;
    }
}

}  // namespace
}  // namespace e2e
