// HTTP towards one appliance.
#pragma once

#include "client/location.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace client {

class FormFile;

struct HttpReply {
    int status = 0;
    std::string body;
    std::string requestId;  // the appliance's name for the request; empty when it gave none
    bool isStream = false;  // of events
};

// Is told how much of a body has been sent.
using SentReceiver = std::function<void(std::uint64_t sentBytes)>;

// Takes a piece of a stream. Returns false when it wants no more.
using PieceReceiver = std::function<bool(std::string_view piece)>;

// Sends requests, each over a connection of its own, with the token of the location. All calls block until
// the reply is complete and throw Failure when none arrives: kUnreachable, kTimedOut, or kFailed when the
// reply is larger than any reply of the appliance.
class HttpClient {
public:
    // `timeLimit` holds for a request as a whole.
    HttpClient(Location location, std::chrono::seconds timeLimit);

    HttpReply Get(const std::string& path, const std::multimap<std::string, std::string>& query = {}) const;

    HttpReply Delete(const std::string& path, const std::multimap<std::string, std::string>& query) const;

    // Receives a stream of events until it ends, breaks off or stays silent for half a minute, or `receive`
    // wants no more. The time limit does not hold here. A reply that is no stream is returned whole.
    //   lastEventId  of the last event that was received; empty for none
    HttpReply Listen(const std::string& path, const std::string& lastEventId,
                     const PieceReceiver& receive) const;

    // The same client with another time limit.
    HttpClient Within(std::chrono::seconds timeLimit) const;

    // `body` is a JSON document.
    HttpReply Post(const std::string& path, const std::string& body) const;

    // Sends a file piece by piece, until its end or until the reply is there. The time limit holds from each
    // piece to the next, and from the last to the end of the reply. Throws as `file` does, too.
    HttpReply PostFile(const std::string& path, const FormFile& file, const SentReceiver& sent) const;

private:
    Location location_;
    std::chrono::seconds timeLimit_;
};

}  // namespace client
