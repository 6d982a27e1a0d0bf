#include "client/exitstatus.h"

namespace client {
namespace {

constexpr int kAnyCode = 0;
constexpr int kRequestServerAway = 1015;

struct Mapping {
    int httpStatus;
    int code;
    ExitStatus status;
};

// The first that fits.
constexpr Mapping kMappings[] = {
    {200, 105, ExitStatus::kNotAuthorised},      {200, 400, ExitStatus::kFailed},
    {401, kAnyCode, ExitStatus::kNotAuthorised}, {403, kAnyCode, ExitStatus::kNotAuthorised},
    {404, kAnyCode, ExitStatus::kNotFound},      {408, kAnyCode, ExitStatus::kTimedOut},
    {413, kAnyCode, ExitStatus::kRefused},       {429, kAnyCode, ExitStatus::kBusy},
    {502, kAnyCode, ExitStatus::kUnreachable},   {503, kRequestServerAway, ExitStatus::kUnreachable},
    {503, kAnyCode, ExitStatus::kBusy},          {504, kAnyCode, ExitStatus::kTimedOut},
};

}  // namespace

// Scripts rely on these.
const std::vector<ExitStatusMeaning>& ExitStatusMeanings() {
    static const std::vector<ExitStatusMeaning> meanings = {
        {ExitStatus::kDone, "done"},
        {ExitStatus::kFailed, "failed"},
        {ExitStatus::kUsage, "wrong usage"},
        {ExitStatus::kNotFound, "not found"},
        {ExitStatus::kRefused, "refused by a check"},
        {ExitStatus::kBusy, "busy"},
        {ExitStatus::kUnreachable, "host unreachable"},
        {ExitStatus::kNotAuthorised, "not authorised"},
        {ExitStatus::kTimedOut, "timed out"},
        {ExitStatus::kOtherOutcome, "finished, but the outcome is not the one asked for"},
        {ExitStatus::kUpdatesThere, "there are newer releases (updates --exit-code)"},
        {ExitStatus::kInterrupted, "interrupted"},
    };
    return meanings;
}

ExitStatus StatusOfError(int httpStatus, int code) {
    for (const Mapping& mapping : kMappings) {
        if (mapping.httpStatus == httpStatus && (mapping.code == kAnyCode || mapping.code == code)) {
            return mapping.status;
        }
    }
    return ExitStatus::kFailed;
}

}  // namespace client
