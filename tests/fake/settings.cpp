#include "platform/settings.h"

#include "fake/journal.h"
#include "fake/script.h"

std::string GetAutoDownloadKey(ADDON_SERVICE service) {
    fake::Record("GetAutoDownloadKey", service);
    return "key" + std::to_string(service);
}

bool IsSettingEnabled(const std::string& key, bool defaultValue, bool fromCache) {
    fake::Record("IsSettingEnabled", key, defaultValue, fromCache);
    return fake::NextAnswer("IsSettingEnabled", defaultValue).asBool();
}

int SetSettingEnabled(const std::string& key, bool enabled) {
    fake::Record("SetSettingEnabled", key, enabled);
    return fake::NextAnswer("SetSettingEnabled", 0).asInt();
}

std::string GetHxModelName(const std::string& hxName) {
    fake::Record("GetHxModelName", hxName);
    return "model";
}

bool IsNVRModel(const std::string& modelName) {
    fake::Record("IsNVRModel", modelName);
    return fake::NextAnswer("IsNVRModel", false).asBool();
}

CVJsConfigParser::CVJsConfigParser(const std::string& language) : language_(language) {
    fake::Record("CVJsConfigParser", language);
}

bool CVJsConfigParser::Parse() {
    fake::Record("CVJsConfigParser::Parse");
    return fake::NextAnswer("CVJsConfigParser::Parse", true).asBool();
}

Json::Value CVJsConfigParser::GetAppsStatus() const {
    fake::Record("CVJsConfigParser::GetAppsStatus");
    return fake::NextAnswer("CVJsConfigParser::GetAppsStatus", Json::Value(Json::objectValue));
}
