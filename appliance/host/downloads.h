// The downloads of new releases, as a page.
#pragma once

#include "host/reply.h"

namespace host {

// One entry for each service that has a download, be it under way, ready or failed. Any thread may call.
// Throws std::exception when the store cannot be read.
Json::Value Downloads();

// Answers with these. Throws as above.
Reply ReplyWithDownloads();

}  // namespace host
