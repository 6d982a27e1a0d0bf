// Calls of the appliance's own web API.
#pragma once

#include "platform/services.h"

#include <chrono>
#include <optional>
#include <string>

namespace schedule {

// Where the web framework serves, and the token for the appliance's own programs.
struct WebApi {
    std::string url;
    std::string token;
};

// Waits until the web framework serves, for `limit` at most. Nothing when it does not.
std::optional<WebApi> AwaitWebApi(std::chrono::seconds limit);

// Has the downloaded package of the service installed, and waits for that. Returns what went wrong, empty
// when it is installed.
std::string Install(const WebApi& api, ADDON_SERVICE service);

}  // namespace schedule
