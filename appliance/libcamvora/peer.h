// Calls of a method on a paired server, over HTTP, with the credentials of the pair.
#pragma once

#include "libcamvora/state.h"

#include <json/value.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace camvora {

struct PeerCall {
    std::string path;  // "/api/API/vN/METHOD"
    Json::Value params{Json::objectValue};
    bool isAuthorized = true;  // with the credentials of the pair, which are added to the parameters
    std::chrono::seconds timeLimit{};
    std::size_t replyLimitBytes = 0;
};

struct PeerReply {
    int httpStatus = 0;  // 0 when no whole reply arrived
    std::string body;
    std::string requestId;  // the peer's name for the request; empty when it gave none
    std::string problem;    // why no whole reply arrived
};

// Calls the method on `peer` and waits for the whole reply, for `timeLimit` from the first to the last byte.
// Follows no redirection. Blocks; any thread may call, and a thread more runs meanwhile.
PeerReply CallPeer(const Pair& peer, PeerCall call);

}  // namespace camvora
