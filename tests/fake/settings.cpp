#include "platform/settings.h"

#include "fake/journal.h"
#include "fake/script.h"

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
