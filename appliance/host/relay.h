// Calls of methods of paired recording servers, which this host passes on:
// /servers/<name>/api/<api>/v<version>/<method>.
#pragma once

#include "host/frameworkerrors.h"

#include <chrono>
#include <optional>
#include <string>

namespace host {

struct RelayTarget {
    std::string server;  // its name
    std::string path;    // of the method there
};

// What `path` names; nothing when it is not of that form.
std::optional<RelayTarget> FindRelayTarget(const std::string& path);

// Has the method called there, with the parameters of the JSON text `body`, marked as coming from its host.
// Returns the server's reply as it is, or the framework's error when none comes. Errors leave a log line
// under `requestId`, which names the server's own id of the request. Blocks; any thread may call.
Reply Relay(const RelayTarget& target, const std::string& body, const std::string& requestId,
            std::chrono::seconds timeLimit);

}  // namespace host
