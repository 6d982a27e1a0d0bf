// The record of programs as a page.
#pragma once

#include "host/reply.h"

#include <httplib.h>

namespace host {

// Answers with the newest programs that the request with the id of the parameter "request" has run, or that
// all have without it: at most a thousand, in the order of their ends. Any thread may call. Throws
// std::exception when the store cannot be read.
Reply ReplyWithPrograms(const httplib::Request& request);

}  // namespace host
