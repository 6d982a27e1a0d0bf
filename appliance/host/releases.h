// The releases that the last checks found, as a page.
#pragma once

#include "host/reply.h"

namespace host {

// Answers with one entry for each service that was ever checked. Any thread may call. Throws std::exception
// when the store cannot be read.
Reply ReplyWithReleases();

}  // namespace host
