#include "libcamvora/apps.h"

#include "libcamvora/jsonobject.h"
#include "libcamvora/uitexts.h"
#include "platform/log.h"

namespace camvora {

namespace {

bool IsApp(const Json::Value& app) {
    return app.isObject() && app["id"].isString() && app["title"].isString() && app["path"].isString() &&
           (app["service"].isNull() || app["service"].isInt());
}

Json::Value StatusOf(const Json::Value& app, const UiTexts& texts, const ServiceCheck& isRunning) {
    const Json::Value& service = app["service"];
    Json::Value status(Json::objectValue);
    status["title"] = texts.Text(app["title"].asString());
    status["path"] = app["path"];
    status["blEnabled"] = service.isNull() || isRunning(static_cast<ADDON_SERVICE>(service.asInt()));
    return status;
}

// Adds what can be read of the list; false when some of it cannot.
bool AddStatus(const Json::Value& apps, const UiTexts& texts, const ServiceCheck& isRunning,
               Json::Value& status) {
    bool complete = apps.isArray();
    for (Json::ArrayIndex i = 0; apps.isArray() && i < apps.size(); ++i) {
        if (IsApp(apps[i])) {
            status[apps[i]["id"].asString()] = StatusOf(apps[i], texts, isRunning);
        } else {
            complete = false;
        }
    }
    return complete;
}

}  // namespace

bool ReadAppsStatus(const std::string& uiFolder, const std::string& language, const ServiceCheck& isRunning,
                    Json::Value& status) {
    Json::Value config;
    UiTexts texts(uiFolder + "/texts", language);
    if (!ReadJsonObject(uiFolder + "/apps.json", config) || !texts.Read()) {
        return false;
    }
    if (!AddStatus(config["apps"], texts, isRunning, status)) {
        CVPrintf(0, nullptr, nullptr, "apps", __LINE__, __func__,
                 "Failed to read all applications from %s/apps.json\n", uiFolder.c_str());
        return false;
    }
    return true;
}

}  // namespace camvora
