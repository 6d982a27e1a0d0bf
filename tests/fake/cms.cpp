#include "platform/cms.h"

#include "fake/journal.h"
#include "fake/script.h"

bool IsCmsHost() {
    fake::Record("IsCmsHost");
    return fake::NextAnswer("IsCmsHost", false).asBool();
}

bool IsCmsPaired() {
    fake::Record("IsCmsPaired");
    return fake::NextAnswer("IsCmsPaired", true).asBool();
}

Json::Value GetJsonAPIInfo(const std::string& api, const std::string& method, int version) {
    fake::Record("GetJsonAPIInfo", api, method, version);
    return Json::Value(Json::objectValue);
}

// Its reply is scripted as "SendWebAPIToHost reply".
int SendWebAPIToHost(const Json::Value& request, bool authorize, Json::Value& reply, int timeLimitS,
                     const char* proxy, int flags) {
    fake::Record("SendWebAPIToHost", request, authorize, reply, timeLimitS, proxy, flags);
    const int result = fake::NextAnswer("SendWebAPIToHost", 0).asInt();
    if (result == 0) {
        reply = fake::NextAnswer("SendWebAPIToHost reply", Json::Value());
    }
    return result;
}

int GetCamOwnerHxId(int cameraId) {
    fake::Record("GetCamOwnerHxId", cameraId);
    return fake::NextAnswer("GetCamOwnerHxId", 0).asInt();
}

bool IsAuthPairMatch(const std::string& cookie, const std::string& timestamp) {
    fake::Record("IsAuthPairMatch", cookie, timestamp);
    return fake::NextAnswer("IsAuthPairMatch", false).asBool();
}

bool SlaveHXAuthentication::IsAuthByPairMatch(const std::string& cookie, const std::string& timestamp) {
    fake::Record("SlaveHXAuthentication::IsAuthByPairMatch", cookie, timestamp);
    return fake::NextAnswer("SlaveHXAuthentication::IsAuthByPairMatch", false).asBool();
}
