// Request ids.
#pragma once

#include <string>

namespace host {

// A new id: 16 hexadecimal digits, used by no other request.
std::string NewRequestId();

}  // namespace host
