// Each request has a process of its own: what one does, or leaves behind, does not reach the next.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <chrono>
#include <future>

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class IsolationTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(Appliance::WithTestModule({"--drain-time", "1"})); }

    // A child that lives so long and then makes `file` in the package's folder.
    Answer Detach(const std::string& file, int lifeMs, bool isSilent) {
        Json::Value params = Param("path", "/var/packages/Camvora/" + file);
        params["ms"] = lifeMs;
        params["blSilent"] = isSilent;
        return owner_.Test("Detach", params);
    }
};

TEST_F(IsolationTest, AHandlerSeesTheRequest) {
    const Json::Value value = Param("text", "\xc3\xa4 \"\\\n\x01");
    const Json::Value data =
        owner_.Call("TEST.Module", "Echo", Param("value", value), {{"Cookie", "x=1; flavour=oat ; y"}})
            .Data();
    EXPECT_EQ(value, data["value"]);
    EXPECT_EQ("oat", data["cookie"].asString());
    EXPECT_EQ("Echo", data["method"].asString());
    EXPECT_TRUE(data["authorized"].asBool());
    EXPECT_FALSE(data["upload"].asBool());
    EXPECT_FALSE(stranger_.Test("Echo").Data()["authorized"].asBool());
    const auto form = owner_.Client().Post("/api/TEST.Module/v1/Echo", {{"value", "12", "", ""}});
    EXPECT_EQ("12", ToAnswer(form).Data()["value"].asString());
    EXPECT_TRUE(ToAnswer(form).Data()["upload"].asBool());
}

TEST_F(IsolationTest, RequestsMayFollowEachOtherWithoutWaitingAndNeedNoBody) {
    RawConnection connection(appliance_->Url());
    connection.Send("POST /api/TEST.Module/v1/Echo HTTP/1.1\r\nHost: x\r\n\r\n" +
                    PostText("Echo", R"({"value":"first"})") + PostText("Echo", R"({"value":"second"})"));
    const std::string replies = connection.ReceiveUntil("second");
    EXPECT_LT(replies.find("null"), replies.find("first"));
    EXPECT_LT(replies.find("first"), replies.find("second"));
    EXPECT_NE(std::string::npos, replies.find("second"));
}

TEST_F(IsolationTest, RepliesAreSentWhole) {
    const httplib::Headers headers = {{"Range", "bytes=0-3"}, {"Accept-Encoding", "gzip, br"}};
    const auto reply = owner_.Client().Get("/api", headers);
    EXPECT_EQ(200, reply->status);
    EXPECT_FALSE(reply->has_header("Content-Encoding"));
    EXPECT_EQ(1018, ToAnswer(owner_.Client().Get("/health", {{"Range", "nonsense"}})).Code());
}

TEST_F(IsolationTest, LargeBodiesAndRepliesArriveWhole) {
    const std::string text(1'500'000, 'y');
    const Answer echo = owner_.Test("Echo", Param("value", text));
    EXPECT_EQ(200, echo.status) << echo.Text();
    EXPECT_TRUE(text == echo.Data()["value"].asString());
    for (const int size : {65'000, 65'536, 131'072, 20'000'000}) {
        const Answer answer = owner_.Test("Large", Param("bytes", size));
        EXPECT_EQ(static_cast<std::size_t>(size), answer.Data().asString().size()) << answer.status;
    }
}

TEST_F(IsolationTest, AClientThatGoesAwayDisturbsNobody) {
    for (int i = 0; i < 10; ++i) {
        RawConnection(appliance_->Url()).Send(PostText("Large", R"({"bytes":10000000})"));
        RawConnection(appliance_->Url()).Send(PostText("Sleep", R"({"ms":50})"));
        RawConnection(appliance_->Url()).Send("POST /api/TEST.Module/v1/Echo HTTP/1.1\r\nContent-Len");
    }
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
}

TEST_F(IsolationTest, ARequestProcessHasOnlyWhatItNeeds) {
    ASSERT_TRUE(appliance_->WaitForRequests(0));
    const auto other = std::async(std::launch::async,
                                  [] { return appliance_->Owner().Test("Sleep", Param("ms", 500)).status; });
    ASSERT_TRUE(appliance_->WaitForRequests(1));
    const Json::Value data = owner_.Test("Inspect").Data();
    const Json::Value& descriptors = data["descriptors"];
    EXPECT_EQ("/dev/null", descriptors["0"].asString());
    EXPECT_EQ("/dev/null", descriptors["1"].asString());
    EXPECT_EQ(4U, descriptors.size()) << descriptors.toStyledString();  // standard error and the connection
    EXPECT_TRUE(data["blChildSignalDefault"].asBool());
    EXPECT_FALSE(data["blChildSignalBlocked"].asBool());
}

TEST_F(IsolationTest, NoDescriptorIsLeftBehind) {
    const auto callSome = [this](int count) {
        for (int i = 0; i < count; ++i) {
            owner_.Test(i % 3 == 0 ? "Crash" : "Echo");
            HttpCalls(appliance_->Stranger()).Get("/health");
        }
    };
    callSome(20);
    const int http = DescriptorCount(appliance_->HttpProcess());
    const int requestServer = DescriptorCount(appliance_->RequestServer());
    callSome(150);
    EXPECT_TRUE(WaitUntil([&] { return DescriptorCount(appliance_->HttpProcess()) <= http; }));
    EXPECT_TRUE(WaitUntil([&] { return DescriptorCount(appliance_->RequestServer()) <= requestServer; }));
}

TEST_F(IsolationTest, ADetachedChildLivesOnAndDelaysNobody) {
    const auto begin = Clock::now();
    EXPECT_TRUE(Detach("detached", 1000, false).Succeeded());
    EXPECT_LT(Clock::now() - begin, milliseconds(900));
    const auto isAtEnd = [] { return std::filesystem::exists(appliance_->PackagePath("detached")); };
    EXPECT_FALSE(isAtEnd());
    EXPECT_TRUE(WaitUntil(isAtEnd));
}

TEST_F(IsolationTest, ADetachedChildDoesNotHideThatTheHandlerGaveNoAnswer) {
    EXPECT_EQ(1009, Detach("silent", 60'000, true).Code());
}

}  // namespace
}  // namespace e2e
