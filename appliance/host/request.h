// A request on its way from the HTTP process to the request process.
#pragma once

#include "host/credentials.h"
#include "host/reply.h"

#include <cstdint>
#include <string>

namespace host {

constexpr std::int32_t kPing = -1;  // in place of a row: only tells that requests are served

struct Request {
    std::int32_t row = kPing;  // of the module's table
    Caller caller = Caller::kStranger;
    bool upload = false;  // the body was a form
    std::string cookies;  // as the client sent them
    std::string files;    // of a form, as Uploads gives them as JSON text; empty for none
    std::string body;     // the parameters as JSON text; empty for none
};

// The text form of requests and replies, for SendText. Decoding takes what Encode made. Replies may be big
// and are not copied.
std::string Encode(const Request& request);
std::string Encode(Reply reply);
Request DecodeRequest(const std::string& text);
Reply DecodeReply(std::string text);

}  // namespace host
