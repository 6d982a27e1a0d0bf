// Status queries: "GetInfo", "List", "GetAppsStatus". They only read and never answer with an error.
#include "webapi/addons.h"

#include "platform/services.h"
#include "platform/settings.h"

void AddOnsHandler::HandleGetInfo() {
    const int service = m_pRequest->GetParam("service", 0).asInt();
    m_pResponse->SetSuccess(GetServiceInfo(static_cast<ADDON_SERVICE>(service)));
}

void AddOnsHandler::HandleList() {
    Json::Value data(Json::objectValue);
    Json::Value& list = data["list"] = Json::Value(Json::arrayValue);
    for (int service = ADDON_SERVICE_DEVICE_PACK; service <= ADDON_SERVICE_LOCAL_DISPLAY; ++service) {
        Json::Value entry(Json::objectValue);
        entry["service"] = service;
        entry["info"] = GetServiceInfo(static_cast<ADDON_SERVICE>(service));
        list.append(entry);
    }
    m_pResponse->SetSuccess(data);
}

void AddOnsHandler::HandleGetAppsStatus() {
    CVJsConfigParser parser(m_pRequest->GetParam("lang", "").asString());
    (void)parser.Parse();  // what could be read is answered, whatever was missing
    Json::Value data(Json::objectValue);
    data["appsStatus"] = parser.GetAppsStatus();
    m_pResponse->SetSuccess(data);
}
