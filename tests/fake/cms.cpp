#include "platform/cms.h"

#include "fake/journal.h"
#include "fake/script.h"

bool IsCmsHost() {
    return fake::Call("IsCmsHost", false).asBool();
}

bool IsCmsPaired() {
    return fake::Call("IsCmsPaired", true).asBool();
}

Json::Value GetJsonAPIInfo(const std::string& api, const std::string& method, int version) {
    fake::Record("GetJsonAPIInfo", api, method, version);
    return Json::Value(Json::objectValue);
}

// Its reply is scripted as "SendWebAPIToHost reply".
int SendWebAPIToHost(const Json::Value& request, bool authorize, Json::Value& reply, int timeLimitS,
                     const char* proxy, int flags) {
    const int result =
        fake::Call("SendWebAPIToHost", 0, request, authorize, reply, timeLimitS, proxy, flags).asInt();
    if (result == 0) {
        reply = fake::NextAnswer("SendWebAPIToHost reply", Json::Value());
    }
    return result;
}

int GetCamOwnerHxId(int cameraId) {
    return fake::Call("GetCamOwnerHxId", 0, cameraId).asInt();
}

bool IsAuthPairMatch(const std::string& cookie, const std::string& timestamp) {
    return fake::Call("IsAuthPairMatch", false, cookie, timestamp).asBool();
}

bool SlaveHXAuthentication::IsAuthByPairMatch(const std::string& cookie, const std::string& timestamp) {
    return fake::Call("SlaveHXAuthentication::IsAuthByPairMatch", false, cookie, timestamp).asBool();
}
