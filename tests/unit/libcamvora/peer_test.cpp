// Calls on a server that does not play along.
#include "libcamvora/peer.h"

#include "scriptedserver.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace {

struct OddCase {
    const char* name;
    ScriptedServer::Answer answer;
    const char* problem;
    int httpStatus;
};

constexpr char kTooLate[] = "no whole reply within 1 s";

const OddCase kOddCases[] = {
    {"whole", {HttpAnswer("200 OK", "{}")}, "", 200},
    {"redirection", {HttpAnswer("307 X\r\nLocation: /other", "")}, "", 307},
    {"cut_short",
     {"HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n{}"},
     "the connection ended without a whole reply",
     0},
    {"too_large", {HttpAnswer("200 OK", "123456789")}, "its reply is too large", 0},
    {"too_large_by_its_word",
     {"HTTP/1.1 200 OK\r\nContent-Length: 99999999999999\r\n\r\n123456789"},
     "its reply is too large",
     0},
    {"head_trickles", {"HTTP/1.1 200 OK\r\nX: ", "x"}, kTooLate, 0},
    {"body_without_end_trickles", {"HTTP/1.1 200 OK\r\n\r\n", " "}, kTooLate, 0},
};

class PeerTest : public testing::TestWithParam<OddCase> {};

TEST_P(PeerTest, SaysWhatIsWrongInTime) {
    const ScriptedServer server([](const std::string&, std::size_t) { return GetParam().answer; });
    const camvora::Pair peer{"peer", camvora::kServerRole, server.Address(), "in", "out"};
    camvora::PeerCall call;
    call.path = "/api/A/v1/M";
    call.timeLimit = std::chrono::seconds(1);
    call.replyLimitBytes = std::string(GetParam().problem) == kTooLate ? 1000 : 8;
    const auto start = std::chrono::steady_clock::now();
    const camvora::PeerReply reply = camvora::CallPeer(peer, call);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_EQ(GetParam().httpStatus, reply.httpStatus);
    EXPECT_EQ(GetParam().problem, reply.problem);
    const std::string& request = server.Requests().at(0);
    EXPECT_EQ(0U, request.find("POST /api/A/v1/M HTTP/1.1\r\n"));
    EXPECT_NE(std::string::npos, request.find("\r\nCookie: timestamp="));
    EXPECT_NE(std::string::npos, request.find(R"("isCrossSite":1)"));
}

INSTANTIATE_TEST_SUITE_P(All, PeerTest, testing::ValuesIn(kOddCases),
                         [](const auto& c) { return c.param.name; });

}  // namespace
