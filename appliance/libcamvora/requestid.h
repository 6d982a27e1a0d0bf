// The id of the request that this process works for. It stands in every log line, operation-log entry and
// notification that the request causes, so that they can be found together.
#pragma once

#include <string>

namespace camvora {

// The environment variable that carries the id to programs.
inline constexpr char kRequestIdVariable[] = "CAMVORA_REQUEST_ID";

// Sets the id for this process and all that it forks from now on. Called by the host, once per request.
void SetRequestId(const std::string& id);

// The id; empty in a process that works for no request.
const std::string& RequestId();

}  // namespace camvora
