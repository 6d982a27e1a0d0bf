// Calls on a server that does not play along.
#include "libcamvora/peer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

// Answers one connection on a loopback port with these bytes, whatever it is asked; the rest trickles in.
class OddServer {
public:
    OddServer(const std::string& bytes, const std::string& trickle)
        : thread_([this, bytes, trickle] { Serve(bytes, trickle); }) {}
    ~OddServer() {
        isEnded_ = true;
        thread_.join();
        close(listener_);
    }
    OddServer(const OddServer&) = delete;
    OddServer& operator=(const OddServer&) = delete;

    std::string Address() const { return "http://127.0.0.1:" + std::to_string(port_); }
    const std::string& Request() {
        isEnded_ = true;
        while (!isServed_) {
            std::this_thread::yield();
        }
        return request_;
    }

private:
    static int Listen(int& port) {
        const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* place = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener, place, size) != 0 || listen(listener, 1) != 0 ||
            getsockname(listener, place, &size) != 0) {
            std::abort();
        }
        port = ntohs(address.sin_port);
        return listener;
    }

    void Serve(const std::string& bytes, const std::string& trickle) {
        const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        while (request_.find("}") == std::string::npos) {
            char piece[1000];
            const ssize_t size = recv(client, piece, sizeof(piece), 0);
            request_.append(piece, size > 0 ? static_cast<std::size_t>(size) : 0);
        }
        (void)send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        while (!trickle.empty() && !isEnded_) {
            (void)send(client, trickle.data(), trickle.size(), MSG_NOSIGNAL);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        close(client);
        isServed_ = true;
    }

    int port_ = 0;
    const int listener_ = Listen(port_);
    std::string request_;
    std::atomic<bool> isEnded_{false};
    std::atomic<bool> isServed_{false};
    std::thread thread_;
};

struct OddCase {
    const char* name;
    const char* bytes;
    const char* trickle;
    const char* problem;
    int httpStatus = 0;
};

constexpr char kTooLate[] = "no whole reply within 1 s";
constexpr char kCut[] = "the connection ended without a whole reply";

const OddCase kOddCases[] = {
    {"whole", "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}", "", "", 200},
    {"redirection", "HTTP/1.1 307 X\r\nLocation: /other\r\nContent-Length: 0\r\n\r\n", "", "", 307},
    {"silence", "", "", kCut},
    {"cut_short", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n{}", "", kCut},
    {"too_large", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n123456789", "", "its reply is too large"},
    {"too_large_by_its_word", "HTTP/1.1 200 OK\r\nContent-Length: 99999999999999\r\n\r\n123456789", "",
     "its reply is too large"},
    {"head_trickles", "HTTP/1.1 200 OK\r\nX: ", "x", kTooLate},
    {"body_trickles", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n", "0", kTooLate},
    {"body_without_end_trickles", "HTTP/1.1 200 OK\r\n\r\n", " ", kTooLate},
};

class PeerTest : public testing::TestWithParam<OddCase> {};

TEST_P(PeerTest, SaysWhatIsWrongInTime) {
    OddServer server(GetParam().bytes, GetParam().trickle);
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
    const std::string& request = server.Request();
    EXPECT_EQ(0U, request.find("POST /api/A/v1/M HTTP/1.1\r\n"));
    EXPECT_NE(std::string::npos, request.find("\r\nCookie: timestamp="));
    EXPECT_NE(std::string::npos, request.find(R"("isCrossSite":1)"));
}

INSTANTIATE_TEST_SUITE_P(All, PeerTest, testing::ValuesIn(kOddCases),
                         [](const auto& c) { return c.param.name; });

}  // namespace
