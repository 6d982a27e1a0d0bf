// Updates: "Update".
#include "webapi/addons.h"

#include "addons/addonsservice.h"

namespace {

constexpr int kErrFailed = 400;

}  // namespace

void AddOnsHandler::HandlePkgUpdate() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    const std::string path = m_pRequest->GetParam("filePath", "").asString();
    AddOns addOns(static_cast<ADDON_SERVICE>(service));
    if (addOns.ExecuteUpdate(path) == 0) {
        m_pResponse->SetSuccess(Json::Value());
    } else {
        m_pResponse->SetError(kErrFailed, Json::Value());
    }
}
