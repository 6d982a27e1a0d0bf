// The limits that keep one client from taking everything.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace e2e {
namespace {

constexpr int kRequestLimit = 4;
constexpr int kIdle = 200;
constexpr std::size_t kGiB = std::size_t{1} << 30;

class LimitsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>(Appliance::WithTestModule(
            {"--request-limit", std::to_string(kRequestLimit), "--body-limit", "1000000", "--upload-limit",
             "1000000", "--read-time", "1", "--idle-time", "5"}));
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    // Sends up to 1 GiB after `head`, and returns what is answered.
    static std::string SendGarbage(const std::string& head, const std::string& piece) {
        RawConnection connection(appliance_->Url());
        EXPECT_TRUE(connection.Send(head));
        for (std::size_t sent = 0; sent < kGiB && connection.Send(piece); sent += piece.size()) {
        }
        return connection.ReceiveUntil("}}");
    }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> LimitsTest::appliance_;

struct GarbageCase {
    std::string name;
    std::string head;
    std::string pieceHead;
    std::string reply;  // what it must hold
};

const std::string kCall = "POST /api/TEST.Module/v1/Echo HTTP/1.1\r\n";
const std::string kForm = "Content-Type: multipart/form-data; boundary=b\r\n";
const std::string kSized = "Content-Length: 1073741824\r\n\r\n";
const std::string kChunked = "Transfer-Encoding: chunked\r\n\r\n";
const std::string kField = "31\r\n--b\r\nContent-Disposition: form-data; name=\"x\"\r\n\r\n\r\n";
const std::string kChunk = "100000\r\n";

const GarbageCase kGarbage[] = {
    {"announced", kCall + kSized, "", R"("code":1006)"},
    {"chunked", kCall + kChunked, kChunk, R"("code":1006)"},
    {"form", kCall + kForm + kSized, "", R"("code":1006)"},
    {"form_field", kCall + kForm + kChunked + kField, kChunk, R"("code":1006)"},
    {"endless_chunk_head", kCall + kChunked, "", R"("code":1018)"},
    {"to_a_page", "POST /health HTTP/1.1\r\n" + kSized, "", R"("code":1017)"},
    {"to_a_path_with_newline", "POST /%0A HTTP/1.1\r\n" + kChunked, kChunk, R"("code":1016)"},
    {"as_a_header", "GET /health HTTP/1.1\r\nX: ", "", R"("code":1018)"},
    {"as_a_path", "GET /", "", ""},
};

class GarbageTest : public LimitsTest, public testing::WithParamInterface<GarbageCase> {};

TEST_P(GarbageTest, IsNotHeldInMemory) {
    ASSERT_TRUE(owner_.Test("Echo").Succeeded());
    const pid_t http = appliance_->HttpProcess();
    const std::string piece = GetParam().pieceHead + std::string(std::size_t{1} << 20, 'x') + "\r\n";
    const std::string reply = SendGarbage(GetParam().head, piece);
    EXPECT_LT(PeakMemoryKiB(http), 16'000);
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
    EXPECT_EQ(http, appliance_->HttpProcess()) << "it was started again";
    EXPECT_NE(std::string::npos, reply.find(GetParam().reply)) << reply;
}

INSTANTIATE_TEST_SUITE_P(All, GarbageTest, testing::ValuesIn(kGarbage),
                         [](const auto& c) { return c.param.name; });

struct HeadCase {
    const char* name;
    const char* head;
};

const HeadCase kContradictions[] = {
    {"size_is_no_number", "Content-Length: abc"},
    {"size_is_negative", "Content-Length: -1"},
    {"size_is_beyond_64_bits", "Content-Length: 99999999999999999999"},
    {"two_sizes", "Content-Length: 2\r\nContent-Length: 4"},
    {"size_and_chunks", "Transfer-Encoding: chunked\r\nContent-Length: 2"},
    {"unknown_encoding", "Transfer-Encoding: zip"},
};

class ContradictionTest : public LimitsTest, public testing::WithParamInterface<HeadCase> {};

// A second reader of such a request could take the rest for a request of its own.
TEST_P(ContradictionTest, EndsTheConnection) {
    RawConnection connection(appliance_->Url());
    connection.Send(std::string("POST /api/TEST.Module/v1/Echo HTTP/1.1\r\n") + GetParam().head +
                    "\r\n\r\n{}" + PostText("Echo", "{}"));
    bool isAtEnd = false;
    const std::string replies = connection.ReceiveAll(isAtEnd);
    EXPECT_TRUE(isAtEnd);
    EXPECT_NE(std::string::npos, replies.find(R"("code":1018)")) << replies;
    EXPECT_EQ(replies.find("HTTP/1.1"), replies.rfind("HTTP/1.1")) << replies;
}

INSTANTIATE_TEST_SUITE_P(All, ContradictionTest, testing::ValuesIn(kContradictions),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_F(LimitsTest, IdleConnectionsHoldNobodyUp) {
    std::vector<RawConnection> idle;
    idle.reserve(kIdle);
    for (int i = 0; i < kIdle; ++i) {
        idle.emplace_back(appliance_->Url());
    }
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
}

TEST_F(LimitsTest, AConnectionMayNotBeIdleForEver) {
    bool isAtEnd = false;
    EXPECT_EQ("", RawConnection(appliance_->Url()).ReceiveAll(isAtEnd));
    EXPECT_TRUE(isAtEnd);
}

TEST_F(LimitsTest, ABodyThatTricklesInIsGivenUp) {
    RawConnection connection(appliance_->Url());
    connection.Send("POST /api/TEST.Module/v1/Echo HTTP/1.1\r\nContent-Length: 10000\r\n\r\n");
    const auto begin = std::chrono::steady_clock::now();
    while (connection.Send("x") && std::chrono::steady_clock::now() - begin < std::chrono::seconds(10)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(6));
}

TEST_F(LimitsTest, AStrangersBodyIsSmall) {
    HttpCalls stranger(appliance_->Url(), "");
    const std::string body = "{\"a\":\"" + std::string(70'000, 'x') + "\"}";
    EXPECT_TRUE(owner_.Post("/api/TEST.Module/v1/Echo", body).Succeeded());
    EXPECT_EQ(413, stranger.Post("/api/TEST.Module/v1/Echo", body).status);
}

TEST_F(LimitsTest, AHeadThatTricklesInIsGivenUp) {
    RawConnection connection(appliance_->Url());
    const auto begin = std::chrono::steady_clock::now();
    while (connection.Send("x") && std::chrono::steady_clock::now() - begin < std::chrono::seconds(10)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST_F(LimitsTest, OneRequestTooManyIsRefusedAtOnce) {
    ASSERT_TRUE(appliance_->WaitForRequests(0));
    std::array<std::future<Answer>, kRequestLimit> running;
    for (auto& call : running) {
        call = std::async(std::launch::async,
                          [] { return appliance_->Owner().Test("Sleep", Param("ms", 1500)); });
    }
    ASSERT_TRUE(appliance_->WaitForRequests(kRequestLimit));
    const Answer refusal = owner_.Test("Echo");
    EXPECT_EQ(503, refusal.status);
    EXPECT_EQ(1008, refusal.Code());
    EXPECT_EQ(200, owner_.Get("/health").status);
    for (auto& call : running) {
        EXPECT_EQ(200, call.get().status);
    }
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
}

}  // namespace
}  // namespace e2e
