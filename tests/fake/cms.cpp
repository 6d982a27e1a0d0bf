#include "platform/cms.h"

#include "fake/journal.h"
#include "fake/script.h"

bool IsCmsHost() {
    fake::Record("IsCmsHost");
    return fake::NextAnswer("IsCmsHost", false).asBool();
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
