#include "libcamvora/apps.h"
#include "libcamvora/paths.h"
#include "platform/settings.h"

CVJsConfigParser::CVJsConfigParser(const std::string& language)
    : language_(language), appsStatus_(Json::objectValue) {}

bool CVJsConfigParser::Parse() {
    appsStatus_ = Json::Value(Json::objectValue);
    return camvora::ReadAppsStatus(camvora::kUiFolder, language_, IsServiceRunning, appsStatus_);
}

Json::Value CVJsConfigParser::GetAppsStatus() const {
    return appsStatus_;
}
