// The exit statuses of camvoractl: what they mean, and which one an error of the appliance becomes.
#pragma once

#include <vector>

namespace client {

enum class ExitStatus : int {
    kDone = 0,
    kFailed = 1,
    kUsage = 2,
    kNotFound = 3,
    kRefused = 4,
    kBusy = 5,
    kUnreachable = 6,
    kNotAuthorised = 7,
    kTimedOut = 8,
    kOtherOutcome = 9,
    kUpdatesThere = 10,
    kInterrupted = 130,
};

struct ExitStatusMeaning {
    ExitStatus status;
    const char* words;
};

// All of them, for the help.
const std::vector<ExitStatusMeaning>& ExitStatusMeanings();

// The status for an error that the appliance answered.
//   httpStatus  of the reply: 200 when the module itself answered
//   code        the error's number
//   returns     kFailed for whatever has no row of its own
ExitStatus StatusOfError(int httpStatus, int code);

}  // namespace client
