// The id of the request that this process, or this thread of it, works for. It stands in every log line,
// operation-log entry and notification that the request causes, so that they can be found together.
#pragma once

#include <string>

namespace camvora {

// The environment variable that carries the id to programs, which have it from there.
inline constexpr char kRequestIdVariable[] = "CAMVORA_REQUEST_ID";

// Sets the id for this thread and all that it forks from now on; empty for none. Called by the host.
void SetRequestId(const std::string& id);

// The id; empty where no request is worked for.
const std::string& RequestId();

}  // namespace camvora
