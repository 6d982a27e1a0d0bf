// A reply that comes while the request is still being sent, as a refusal does.
#pragma once

#include "client/httpclient.h"

#include <cstddef>
#include <optional>

namespace client {

// Takes the reply that has begun to come on `socket`, up to the end of the connection: who refuses a request
// that is not whole ends it. Nothing when none has begun, at once, or when it breaks off in its head.
std::optional<HttpReply> TakeEarlyReply(int socket, std::size_t limitBytes);

}  // namespace client
