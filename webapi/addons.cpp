#include "webapi/addons.h"

#include "platform/services.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int kErrNotAdmitted = 105;
constexpr int kErrNoMethod = 401;

// Client types of paired recording servers.
constexpr const char* gPairedClientTypes[] = {"MV180RX", "NVR", "REC_SERVER"};

bool IsPairedClientType(const std::string& client) {
    return std::any_of(std::begin(gPairedClientTypes), std::end(gPairedClientTypes),
                       [&client](const char* type) { return client == type; });
}

}  // namespace

struct AddOnsHandler::Route {
    const char* method;
    void (AddOnsHandler::*handle)();
};

// Each method here has a row in gTable.
const AddOnsHandler::Route AddOnsHandler::kRoutes[] = {
    {"Enable", &AddOnsHandler::HandleEnable},
    {"Disable", &AddOnsHandler::HandleEnable},
    {"Restart", &AddOnsHandler::HandleRestart},
    {"GetInfo", &AddOnsHandler::HandleGetInfo},
    {"GetAppsStatus", &AddOnsHandler::HandleGetAppsStatus},
    {"SetAutoUpdate", &AddOnsHandler::HandleSetAutoUpdate},
    {"GetUpdateInfo", &AddOnsHandler::HandleGetUpdateInfo},
    {"CheckUpdateInfo", &AddOnsHandler::HandleCheckUpdateInfo},
    {"List", &AddOnsHandler::HandleList},
    {"CheckEnableDone", &AddOnsHandler::HandleCheckEnableDone},
    {"GetPkgInfo", &AddOnsHandler::HandleGetPkgInfo},
    {"LoadFile", &AddOnsHandler::HandleLoadFile},
    {"Update", &AddOnsHandler::HandlePkgUpdate},
    {"Upload", &AddOnsHandler::HandleUpload},
    {"Restore", &AddOnsHandler::HandleRestore},
    {"DownloadStart", &AddOnsHandler::HandleDownloadStart},
    {"DownloadProgress", &AddOnsHandler::HandleDownloadProgress},
    {"DownloadCancel", &AddOnsHandler::HandleDownloadCancel},
};

AddOnsHandler::AddOnsHandler(ORVA::APIRequest* request, ORVA::APIResponse* response)
    : AddOnsHandlerBase(request, response) {}

void AddOnsHandler::HandleProcess() {
    if (!IsAdmitted()) {
        m_pResponse->SetError(kErrNotAdmitted, Json::Value());
        return;
    }
    Dispatch();
}

bool AddOnsHandler::IsAdmitted() {
    if (m_pRequest->IsAuthorized()) {
        return true;
    }
    const bool packageRuns = IsCVRunning();
    const bool crossSite = m_pRequest->GetParam("isCrossSite", 0).asInt() == 1;
    const std::string client = m_pRequest->GetParam("client", "").asString();
    return IsPairedClientType(client) && packageRuns && IsPairMatch(crossSite);
}

bool AddOnsHandler::IsPairMatch(bool crossSite) {
    const std::string cookie = m_pRequest->GetParam("cookie", "cookie").asString();
    const std::string timestamp = m_pRequest->GetCookie("timestamp", "");
    if (crossSite) {
        return SlaveHXAuthentication().IsAuthByPairMatch(cookie, timestamp);
    }
    return IsAuthPairMatch(cookie, timestamp);
}

void AddOnsHandler::Dispatch() {
    const std::string method = m_pRequest->GetAPIMethod();
    if (method.empty()) {
        m_pResponse->SetError(kErrNoMethod, Json::Value());
        return;
    }
    for (const Route& route : kRoutes) {
        if (method == route.method) {
            (this->*route.handle)();
            return;
        }
    }
}
