// The releases that the last checks found, as a page.
#pragma once

#include "host/reply.h"

namespace host {

// What the last check of each add-on has found. Any thread may call. Throws std::exception when the store
// cannot be read.
Json::Value Releases();

// Answers with that. Throws as above.
Reply ReplyWithReleases();

}  // namespace host
