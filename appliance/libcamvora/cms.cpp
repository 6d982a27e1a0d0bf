#include "platform/cms.h"

#include "libcamvora/operations.h"
#include "libcamvora/pairedcaller.h"
#include "libcamvora/pairproof.h"
#include "libcamvora/pairs.h"
#include "libcamvora/peer.h"
#include "libcamvora/replytext.h"
#include "libcamvora/requestorigin.h"
#include "libcamvora/settings.h"
#include "libcamvora/store.h"
#include "platform/log.h"

#include <chrono>
#include <cstddef>
#include <ctime>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

// The members of a request object that are no parameters.
constexpr char kApi[] = "api";
constexpr char kMethod[] = "method";
constexpr char kVersion[] = "version";

// Enough for the largest file that the host gives away: it has lost it by then.
constexpr std::size_t kReplyLimitBytes = 0x7FFFFFFF;

bool isCallerPaired = false;

// Whoever shows a token as well is known by that.
void TakeAsCaller(const std::string& role) {
    isCallerPaired = true;
    if (camvora::RequestOrigin().empty()) {
        camvora::SetRequestOrigin(role == camvora::kHostRole ? camvora::kPairedHostOrigin
                                                             : camvora::kPairedServerOrigin);
    }
    camvora::BeginPlannedOperation();
}

// True when a server of the role `role` made the proof.
bool IsProofOf(const char* role, const std::string& cookie, const std::string& timestamp) {
    const auto state = camvora::TheStore().Read();
    std::vector<std::string> secrets;
    for (const camvora::Pair& pair : state->pairs) {
        if (pair.role == role) {
            secrets.push_back(pair.secretIn);
        }
    }
    const bool isProof = camvora::IsProofOfPair(secrets, cookie, timestamp, std::time(nullptr));
    if (isProof) {
        TakeAsCaller(role);
    }
    return isProof;
}

camvora::PeerCall ToPeerCall(const Json::Value& request, bool authorize, int timeLimitS) {
    camvora::PeerCall call;
    call.path = "/api/" + request[kApi].asString() + "/v" + request[kVersion].asString() + "/" +
                request[kMethod].asString();
    call.params = request;
    for (const char* member : {kApi, kMethod, kVersion}) {
        call.params.removeMember(member);
    }
    call.isAuthorized = authorize;
    call.timeLimit = std::chrono::seconds(timeLimitS);
    call.replyLimitBytes = kReplyLimitBytes;
    return call;
}

// Takes the framework's reply object out of what the host sent. Returns what is wrong with it, empty when
// `reply` is filled.
std::string TakeReply(camvora::PeerReply arrived, Json::Value& reply) {
    if (arrived.httpStatus == 0) {
        return arrived.problem;
    }
    std::optional<Json::Value> parsed = camvora::ParseReply(std::move(arrived.body));
    if (!parsed || !(*parsed)["success"].isBool()) {
        return "its reply with HTTP status " + std::to_string(arrived.httpStatus) + " is not a framework's";
    }
    reply.swap(*parsed);
    return "";
}

std::string CallHost(const camvora::Pair& host, camvora::PeerCall call, Json::Value& reply) {
    try {
        return TakeReply(camvora::CallPeer(host, std::move(call)), reply);
    } catch (const std::bad_alloc&) {
        return "there is not enough memory for its reply";
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

}  // namespace

bool camvora::IsCallerPaired() {
    return isCallerPaired;
}

bool IsCmsHost() {
    return camvora::IsSettingEnabled(*camvora::TheStore().Read(), camvora::kCmsHostSetting, false);
}

bool IsCmsPaired() {
    return camvora::FindPair(camvora::kHostRole).has_value();
}

int GetCamOwnerHxId(int cameraId) {
    const auto state = camvora::TheStore().Read();
    const auto owner = state->cameraOwners.find(cameraId);
    return owner == state->cameraOwners.end() ? 0 : owner->second;
}

bool IsAuthPairMatch(const std::string& cookie, const std::string& timestamp) {
    return IsProofOf(camvora::kServerRole, cookie, timestamp);
}

bool SlaveHXAuthentication::IsAuthByPairMatch(const std::string& cookie, const std::string& timestamp) {
    return IsProofOf(camvora::kHostRole, cookie, timestamp);
}

Json::Value GetJsonAPIInfo(const std::string& api, const std::string& method, int version) {
    Json::Value request(Json::objectValue);
    request[kApi] = api;
    request[kMethod] = method;
    request[kVersion] = version;
    return request;
}

int SendWebAPIToHost(const Json::Value& request, bool authorize, Json::Value& reply, int timeLimitS,
                     const char* proxy, int /*flags*/) {
    const std::optional<camvora::Pair> host = camvora::FindPair(camvora::kHostRole);
    std::string problem = "this server has none";
    if (proxy != nullptr) {
        problem = "it is not called through a proxy";
    } else if (host) {
        problem = CallHost(*host, ToPeerCall(request, authorize, timeLimitS), reply);
    }
    if (problem.empty()) {
        return 0;
    }
    CVPrintf(0, nullptr, nullptr, "cms", __LINE__, __func__, "Cannot call the CMS host [%s]: %s\n",
             host ? host->address.c_str() : "", problem.c_str());
    return -1;
}
