// How an operation has ended.
#pragma once

#include "host/reply.h"

#include <string>

namespace host {

// What the answer to the request says of the operation that it is: failed with a code, or done. Records it.
// Any thread may call.
void RecordAnswered(const std::string& requestId, const Reply& reply);

// What has become of an operation that went on after its answer, once no process works for it any more: the
// traces that it has left tell. Records it. Any thread may call.
void RecordOutcome(const std::string& requestId);

}  // namespace host
