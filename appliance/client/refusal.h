// Why the appliance does not take a package, in plain words.
#pragma once

#include "client/failure.h"

#include <string>

namespace client {

// Makes the failure of a call, when it is a refusal by a check, one with that status and with plain words;
// any other failure stays as it is. The reason that the appliance gives stays in its data where there are no
// words for it, and where `isForPrograms`.
//   file  what was refused, in the text
Failure Refusal(Failure failure, const std::string& file, bool isForPrograms);

}  // namespace client
