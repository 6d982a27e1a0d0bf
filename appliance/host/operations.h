// What requests do to the add-ons: which methods are operations, and the page that lists them.
#pragma once

#include "host/reply.h"

#include <httplib.h>

#include <string>

namespace host {

// True for a method that changes an add-on, or takes its time over one.
bool IsOperation(const std::string& method);

// True for an operation that goes on after its answer.
bool IsDetached(const std::string& method);

// Those that run, as in the answer of the page below but without the time that they have taken so far. Any
// thread may call. Throws std::exception when the store cannot be read.
Json::Value RunningOperations();

// Answers with operations in the order of their begins, at most a thousand. Without parameters these are the
// newest; "after" asks for those that follow an id, "id" and "request" for one alone. Any thread may call.
// Throws std::exception when the store cannot be read.
Reply ReplyWithOperations(const httplib::Request& request);

}  // namespace host
