// The limits that keep one client from taking everything.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <array>
#include <chrono>
#include <future>
#include <thread>

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRequestLimit = 4;
constexpr int kIdle = 200;
constexpr std::size_t kGiB = std::size_t{1} << 30;

class LimitsTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start(Appliance::WithTestModule({"--request-limit", std::to_string(kRequestLimit), "--body-limit",
                                         "1000000", "--upload-limit", "1000000", "--read-time", "1",
                                         "--idle-time", "2"}));
    }

    // Sends up to 1 GiB after `head`, and returns what is answered.
    static std::string SendGarbage(const std::string& head, const std::string& piece) {
        RawConnection connection(appliance_->Url());
        EXPECT_TRUE(connection.Send(head));
        for (std::size_t sent = 0; sent < kGiB && connection.Send(piece); sent += piece.size()) {
        }
        return connection.ReceiveUntil("}}");
    }
};

struct GarbageCase {
    const char* name;
    std::string head;
    const char* pieceHead;
    const char* pieceEnd;
    const char* reply;  // what it must hold
};

const std::string kCall = "POST /api/TEST.Module/v1/Echo HTTP/1.1\r\n";
const std::string kForm = "Content-Type: multipart/form-data; boundary=b\r\n";
const std::string kSized = "Content-Length: 1073741824\r\n\r\n";
const std::string kChunked = "Transfer-Encoding: chunked\r\n\r\n";
const std::string kField = "31\r\n--b\r\nContent-Disposition: form-data; name=\"x\"\r\n\r\n\r\n";
constexpr char kChunk[] = "100000\r\n";

const GarbageCase kGarbage[] = {
    {"announced", kCall + kSized, "", "", R"("code":1006)"},
    {"chunked", kCall + kChunked, kChunk, "\r\n", R"("code":1006)"},
    {"form", kCall + kForm + kSized, "", "", R"("code":1006)"},
    {"form_field", kCall + kForm + kChunked + kField, kChunk, "\r\n", R"("code":1006)"},
    {"endless_chunk_head", kCall + kChunked, "", "", R"("code":1018)"},
    {"to_a_page", "POST /health HTTP/1.1\r\n" + kSized, "", "", R"("code":1017)"},
    {"to_a_path_with_newline", "POST /%0A HTTP/1.1\r\n" + kChunked, kChunk, "\r\n", R"("code":1016)"},
    {"as_a_header", "GET /health HTTP/1.1\r\nX: ", "", "", R"("code":1018)"},
    {"as_a_path", "GET /", "", "", ""},
};

TEST_F(LimitsTest, GarbageIsNotHeldInMemory) {
    ASSERT_TRUE(owner_.Test("Echo").Succeeded());
    const pid_t http = appliance_->HttpProcess();
    for (const GarbageCase& c : kGarbage) {
        SCOPED_TRACE(c.name);
        const std::string piece = c.pieceHead + std::string(std::size_t{1} << 20, 'x') + c.pieceEnd;
        const std::string reply = SendGarbage(c.head, piece);
        EXPECT_LT(PeakMemoryKiB(http), 16'000);
        EXPECT_TRUE(owner_.Test("Echo").Succeeded());
        EXPECT_EQ(http, appliance_->HttpProcess()) << "it was started again";
        EXPECT_NE(std::string::npos, reply.find(c.reply)) << reply;
    }
}

// A second reader of such a request could take the rest for a request of its own.
TEST_F(LimitsTest, AnUnclearSizeOfABodyEndsTheConnection) {
    for (const char* header :
         {"Content-Length: abc", "Content-Length: -1", "Content-Length: 99999999999999999999",
          "Content-Length: 2\r\nContent-Length: 4", "Transfer-Encoding: chunked\r\nContent-Length: 2",
          "Transfer-Encoding: zip"}) {
        SCOPED_TRACE(header);
        RawConnection connection(appliance_->Url());
        connection.Send(kCall + header + "\r\n\r\n{}" + PostText("Echo", "{}"));
        const std::string replies = connection.ReceiveAll();
        EXPECT_TRUE(connection.IsAtEnd());
        EXPECT_NE(std::string::npos, replies.find(R"("code":1018)")) << replies;
        EXPECT_EQ(replies.find("HTTP/1.1"), replies.rfind("HTTP/1.1")) << replies;
    }
}

TEST_F(LimitsTest, IdleConnectionsHoldNobodyUp) {
    std::vector<RawConnection> idle;
    idle.reserve(kIdle);
    for (int i = 0; i < kIdle; ++i) {
        idle.emplace_back(appliance_->Url());
    }
    EXPECT_TRUE(owner_.Test("Echo").Succeeded());
}

TEST_F(LimitsTest, AConnectionMayNotBeIdleForEver) {
    RawConnection connection(appliance_->Url());
    EXPECT_EQ("", connection.ReceiveAll());
    EXPECT_TRUE(connection.IsAtEnd());
}

TEST_F(LimitsTest, WhatTricklesInIsGivenUp) {
    for (const std::string& begin : {std::string("GET /"), kCall + "Content-Length: 10000\r\n\r\n"}) {
        SCOPED_TRACE(begin);
        RawConnection connection(appliance_->Url());
        connection.Send(begin);
        const auto since = Clock::now();
        while (connection.Send("x") && Clock::now() - since < std::chrono::seconds(10)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        EXPECT_LT(Clock::now() - since, std::chrono::seconds(6));
    }
}

TEST_F(LimitsTest, AStrangersBodyIsSmall) {
    const std::string body = "{\"a\":\"" + std::string(70'000, 'x') + "\"}";
    EXPECT_TRUE(owner_.Post("/api/TEST.Module/v1/Echo", body).Succeeded());
    EXPECT_EQ(413, stranger_.Post("/api/TEST.Module/v1/Echo", body).status);
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
