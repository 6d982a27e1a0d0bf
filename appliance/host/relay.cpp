#include "host/relay.h"

#include "host/jsonparams.h"

#include "libcamvora/pairs.h"
#include "libcamvora/peer.h"
#include "libcamvora/requestid.h"
#include "platform/log.h"

#include <regex>
#include <utility>

namespace host {

namespace {

constexpr std::size_t kReplyLimitBytes = std::size_t{16} << 20;
constexpr std::size_t kPathLimitBytes = 512;
constexpr char kRelayedMark[] = "isRedirectCgi";

void LogFailure(const std::string& requestId, const std::string& server, const std::string& text) {
    camvora::SetRequestId(requestId);
    CVPrintf(0, nullptr, nullptr, "relay", __LINE__, __func__, "%s: %s\n", server.c_str(), text.c_str());
    camvora::SetRequestId("");
}

}  // namespace

std::optional<RelayTarget> FindRelayTarget(const std::string& path) {
    static const std::regex form("/servers/([A-Za-z0-9._-]+)(/api/[A-Za-z0-9._]+/v[0-9]+/[A-Za-z0-9_]+)");
    std::smatch parts;
    if (path.size() > kPathLimitBytes || !std::regex_match(path, parts, form)) {
        return std::nullopt;
    }
    return RelayTarget{parts[1], parts[2]};
}

Reply Relay(const RelayTarget& target, const std::string& body, const std::string& requestId,
            std::chrono::seconds timeLimit) {
    camvora::PeerCall call;
    if (auto refusal = ReadParams(body, call.params)) {
        return *refusal;
    }
    const std::optional<camvora::Pair> server = camvora::FindPair(camvora::kServerRole, target.server);
    if (!server) {
        return ReplyFor(FrameworkError::kNotFound, "no paired server is called so");
    }
    call.path = target.path;
    call.params[kRelayedMark] = true;
    call.timeLimit = timeLimit;
    call.replyLimitBytes = kReplyLimitBytes;
    camvora::PeerReply reply = camvora::CallPeer(*server, std::move(call));
    if (reply.httpStatus == 0) {
        LogFailure(requestId, target.server, reply.problem);
        return ReplyFor(FrameworkError::kServerAway, reply.problem);
    }
    Reply answer{reply.httpStatus, std::move(reply.body)};
    if (!IsSuccess(answer)) {
        LogFailure(requestId, target.server, "answered an error; there, the request was " + reply.requestId);
    }
    return answer;
}

}  // namespace host
