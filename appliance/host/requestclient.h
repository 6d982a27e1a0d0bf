// Has requests served by the request server, on behalf of HTTP clients.
#pragma once

#include "host/reply.h"
#include "host/request.h"
#include "host/uniquefd.h"

#include <atomic>
#include <string>

namespace host {

// Used by all threads of the HTTP process at once.
class RequestClient {
public:
    //   intake        where connections are handed in to the request server
    //   requestLimit  requests at a time; more are answered that too many run
    //   requestTimeS  the longest time that the request server lets a request take, in seconds
    RequestClient(UniqueFd intake, int requestLimit, int requestTimeS);

    // Hands the request in and waits for the reply: the module's, or the framework's error when none comes.
    //   connection  becomes what all processes that work for the request hold the other end of; closed where
    //               nobody has taken the request in
    Reply Call(const std::string& requestId, const Request& request, UniqueFd& connection);

    // Asks whether requests are served: success, or that the request server is away. Takes a few seconds at
    // most, and no place of a request.
    Reply Ping(const std::string& requestId) const;

private:
    Reply Exchange(const std::string& requestId, const Request& request, int waitLimitS,
                   UniqueFd& connection) const;

    UniqueFd intake_;
    int requestLimit_;
    int requestTimeS_;
    std::atomic<int> running_{0};
};

}  // namespace host
