// Settings, the machine's model, and the configuration of the web applications.
// Implemented by the package library; each call may be made from any process of a request.
#pragma once

#include "platform/services.h"

#include <json/value.h>

#include <string>

// The key of the automatic-update setting of `service`.
std::string GetAutoDownloadKey(ADDON_SERVICE service);

// The boolean setting `key`; `defaultValue` when it was never written or cannot be read.
// `fromCache` allows a value read earlier in this process; the module always passes false.
bool IsSettingEnabled(const std::string& key, bool defaultValue, bool fromCache);

// Writes the boolean setting `key`. Returns 0, or -1 when it cannot be stored.
int SetSettingEnabled(const std::string& key, bool enabled);

// The model name of this machine for an empty `hxName`, else that of the named recording server.
std::string GetHxModelName(const std::string& hxName);

// True for models that are network video recorders (with a display of their own).
bool IsNVRModel(const std::string& modelName);

// The package's web applications and their texts in one language.
class CVJsConfigParser {
public:
    // `language` is a language code; an unknown or empty one stands for English.
    explicit CVJsConfigParser(const std::string& language);

    // Reads the configuration. Returns true when all of it could be read; what could not be read is
    // missing from the status.
    bool Parse();

    // The status of each application, with texts in the language: an object, empty before Parse or
    // where the configuration cannot be read.
    Json::Value GetAppsStatus() const;

private:
    std::string language_;
    Json::Value appsStatus_;
};
