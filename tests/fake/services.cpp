#include "platform/services.h"

#include "fake/journal.h"
#include "fake/script.h"

Json::Value GetServiceInfo(ADDON_SERVICE service) {
    fake::Record("GetServiceInfo", service);
    return fake::NextAnswer("GetServiceInfo", Json::Value(Json::objectValue));
}

bool IsCVRunning() {
    fake::Record("IsCVRunning");
    return fake::NextAnswer("IsCVRunning", true).asBool();
}
