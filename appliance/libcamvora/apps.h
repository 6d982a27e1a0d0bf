// The applications of the web user interface.
#pragma once

#include "platform/services.h"

#include <json/value.h>

#include <functional>
#include <string>

namespace camvora {

using ServiceCheck = std::function<bool(ADDON_SERVICE)>;

// Reads the applications from the folder `uiFolder`: the file "apps.json" with the list "apps", each with
// "id", "title" (the key of a text), "path" and, where it needs one, "service"; and the texts in "texts/".
//   language   a language code
//   isRunning  whether a service works
//   status     filled by id: an object with the texts "title" and "path" and with "blEnabled", true when
//              the application's service works or it needs none
//   returns    true when all of it could be read; otherwise a line in the diagnostic log says what is wrong:
//              a damaged file, and nothing is filled in, or an application, which is left out
bool ReadAppsStatus(const std::string& uiFolder, const std::string& language, const ServiceCheck& isRunning,
                    Json::Value& status);

}  // namespace camvora
