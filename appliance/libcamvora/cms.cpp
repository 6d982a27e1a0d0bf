#include "platform/cms.h"

#include "libcamvora/pairedcaller.h"
#include "libcamvora/pairproof.h"
#include "libcamvora/settings.h"
#include "libcamvora/store.h"

#include <ctime>
#include <string>
#include <vector>

namespace {

bool isCallerPaired = false;

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
    isCallerPaired = isCallerPaired || isProof;
    return isProof;
}

}  // namespace

bool camvora::IsCallerPaired() {
    return isCallerPaired;
}

bool IsCmsHost() {
    return camvora::IsSettingEnabled(*camvora::TheStore().Read(), camvora::kCmsHostSetting, false);
}

int GetCamOwnerHxId(int cameraId) {
    const auto state = camvora::TheStore().Read();
    const auto owner = state->cameraOwners.find(cameraId);
    return owner == state->cameraOwners.end() ? 0 : owner->second;
}

bool IsAuthPairMatch(const std::string& cookie, const std::string& timestamp) {
    return IsProofOf("server", cookie, timestamp);
}

bool SlaveHXAuthentication::IsAuthByPairMatch(const std::string& cookie, const std::string& timestamp) {
    return IsProofOf("host", cookie, timestamp);
}

Json::Value GetJsonAPIInfo(const std::string& api, const std::string& method, int version) {
    Json::Value request(Json::objectValue);
    request["api"] = api;
    request["method"] = method;
    request["version"] = version;
    return request;
}
