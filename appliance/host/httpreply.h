// Replies in the HTTP library's form.
#pragma once

#include "host/reply.h"

#include <httplib.h>

#include <string>

namespace host {

// Makes `reply` the answer.
void Write(httplib::Response& response, Reply reply);

// Gives the answer a new request id, and returns it.
std::string GiveRequestId(httplib::Response& response);

// Tells the client that the connection ends after this answer.
void AnnounceClose(httplib::Response& response);

// Has the refusals and failures that come from the library itself answered in the form of all others, and
// gives every answer a request id.
void CompleteReplies(httplib::Server& server);

}  // namespace host
