// HTTP towards one appliance.
#pragma once

#include "client/location.h"

#include <chrono>
#include <map>
#include <string>

namespace client {

struct HttpReply {
    int status = 0;
    std::string body;
    std::string requestId;  // the appliance's name for the request; empty when it gave none
};

// Sends requests, each over a connection of its own, with the token of the location. All calls block until
// the reply is complete and throw Failure when none arrives: kUnreachable, kTimedOut, or kFailed when the
// reply is larger than any reply of the appliance.
class HttpClient {
public:
    // `timeLimit` holds for a request as a whole.
    HttpClient(Location location, std::chrono::seconds timeLimit);

    HttpReply Get(const std::string& path, const std::multimap<std::string, std::string>& query = {}) const;

    // `body` is a JSON document.
    HttpReply Post(const std::string& path, const std::string& body) const;

private:
    HttpReply Send(const char* method, const std::string& path, const std::string& body) const;

    Location location_;
    std::chrono::seconds timeLimit_;
};

}  // namespace client
