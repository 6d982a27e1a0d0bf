// Who calls, as far as the host itself can tell.
#pragma once

#include "host/accesstoken.h"

#include <cstdint>
#include <string>
#include <utility>

namespace host {

enum class Caller : std::int32_t {
    kStranger,  // without a token; the module may know it
    kClient,    // with the owner's token
    kConsole,   // who has signed in to the web console
    kSchedule   // with the token of this run, which the appliance's own programs find in a file
};

// The owner's token is kept outside of the appliance's files, as it is good for everything and for ever. What
// the appliance does by itself has another, for the methods of the module only and until the host ends.
class Credentials {
public:
    Credentials(AccessToken client, AccessToken schedule)
        : client_(std::move(client)), schedule_(std::move(schedule)) {}

    // Who shows `authorization`, the value of that HTTP header.
    Caller Identify(const std::string& authorization) const;

    const std::string& ClientToken() const { return client_.Text(); }
    const std::string& ScheduleToken() const { return schedule_.Text(); }

private:
    AccessToken client_;
    AccessToken schedule_;
};

}  // namespace host
