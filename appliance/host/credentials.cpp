#include "host/credentials.h"

namespace host {

Caller Credentials::Identify(const std::string& authorization) const {
    if (client_.IsCarriedBy(authorization)) {
        return Caller::kClient;
    }
    return schedule_.IsCarriedBy(authorization) ? Caller::kSchedule : Caller::kStranger;
}

}  // namespace host
