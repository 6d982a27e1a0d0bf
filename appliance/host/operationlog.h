// The operation log as a page.
#pragma once

#include "host/reply.h"

#include <httplib.h>

namespace host {

// Answers with the entries of the operation log, at most a thousand, oldest first. Without parameters these
// are the newest; "request" asks for those of one request, "after" for those that follow an id. Any thread
// may call. Throws std::exception when the store cannot be read.
Reply ReplyWithOperationLog(const httplib::Request& request);

}  // namespace host
