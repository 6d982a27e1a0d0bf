#include "libcamvora/peer.h"

#include "libcamvora/exchangewatch.h"
#include "libcamvora/pairproof.h"
#include "platform/files.h"

#include <httplib.h>

#include <algorithm>
#include <ctime>

namespace camvora {

namespace {

constexpr std::chrono::seconds kConnectLimit{10};
constexpr char kClientType[] = "REC_SERVER";

void AddCredentials(const Pair& peer, Json::Value& params, httplib::Request& request) {
    const std::string now = std::to_string(std::time(nullptr));
    params["client"] = kClientType;
    params["cookie"] = PairProof(peer.secretOut, now);
    if (peer.role == kServerRole) {
        params["isCrossSite"] = 1;  // the proof is that of its host
    }
    request.set_header("Cookie", "timestamp=" + now);
}

httplib::Request MakeRequest(const Pair& peer, PeerCall& call) {
    httplib::Request request;
    request.method = "POST";
    request.path = call.path;
    if (call.isAuthorized) {
        AddCredentials(peer, call.params, request);
    }
    request.body = JsonWrite(call.params, true);
    request.set_header("Content-Type", "application/json");
    return request;
}

// Has the reply written to `reply` as it arrives. A big one gets its memory at once.
void Receive(httplib::Request& request, std::size_t limitBytes, PeerReply& reply) {
    request.response_handler = [&reply, limitBytes](const httplib::Response& response) {
        const auto size = response.get_header_value<std::size_t>("Content-Length");
        reply.body.reserve(std::min(size, limitBytes));
        return true;
    };
    request.content_receiver = [&reply, limitBytes](const char* bytes, std::size_t sizeBytes, std::uint64_t,
                                                    std::uint64_t) {
        if (sizeBytes > limitBytes - reply.body.size()) {
            reply.problem = "its reply is too large";
            return false;
        }
        reply.body.append(bytes, sizeBytes);
        return true;
    };
}

std::string WordsFor(httplib::Error error) {
    const bool isAway = error == httplib::Error::Connection || error == httplib::Error::ConnectionTimeout;
    return isAway ? "nobody answers there" : "the connection ended without a whole reply";
}

}  // namespace

PeerReply CallPeer(const Pair& peer, PeerCall call) {
    httplib::Client http(peer.address);
    http.set_connection_timeout(std::min(call.timeLimit, kConnectLimit));
    http.set_read_timeout(2 * call.timeLimit);  // the watch comes first: this one starts anew at each byte
    http.set_write_timeout(2 * call.timeLimit);

    PeerReply reply;
    httplib::Request request = MakeRequest(peer, call);
    Receive(request, call.replyLimitBytes, reply);
    const ExchangeWatch watch(http, {call.timeLimit});
    const httplib::Result result = http.send(request);
    if (watch.HasEnded()) {  // ended by it, a reply of unknown length looks whole
        reply.problem = "no whole reply within " + std::to_string(call.timeLimit.count()) + " s";
    } else if (!result && reply.problem.empty()) {
        reply.problem = WordsFor(result.error());
    }
    if (reply.problem.empty()) {
        reply.httpStatus = result->status;
        reply.requestId = result->get_header_value("X-Request-Id");
    }
    return reply;
}

}  // namespace camvora
