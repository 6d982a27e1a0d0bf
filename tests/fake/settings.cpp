#include "platform/settings.h"

#include "fake/journal.h"
#include "fake/script.h"

std::string GetAutoDownloadKey(ADDON_SERVICE service) {
    fake::Record("GetAutoDownloadKey", service);
    return "key" + std::to_string(service);
}

bool IsSettingEnabled(const std::string& key, bool defaultValue, bool fromCache) {
    return fake::Call("IsSettingEnabled", defaultValue, key, defaultValue, fromCache).asBool();
}

int SetSettingEnabled(const std::string& key, bool enabled) {
    return fake::Call("SetSettingEnabled", 0, key, enabled).asInt();
}

std::string GetHxModelName(const std::string& hxName) {
    fake::Record("GetHxModelName", hxName);
    return "model";
}

bool IsNVRModel(const std::string& modelName) {
    return fake::Call("IsNVRModel", false, modelName).asBool();
}

CVJsConfigParser::CVJsConfigParser(const std::string& language) : language_(language) {
    fake::Record("CVJsConfigParser", language);
}

bool CVJsConfigParser::Parse() {
    return fake::Call("CVJsConfigParser::Parse", true).asBool();
}

Json::Value CVJsConfigParser::GetAppsStatus() const {
    return fake::Call("CVJsConfigParser::GetAppsStatus", Json::Value(Json::objectValue));
}
