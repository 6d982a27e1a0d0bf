// The appliance's points in time for people.
#pragma once

#include <string>

namespace client {

// A time in the zone of this machine.
//   utc      as the appliance writes it: "2026-03-01T12:00:00.123Z"; the fraction is dropped
//   format   of strftime
//   returns  `utc` itself when it is of another form
std::string LocalTime(const std::string& utc, const char* format);

}  // namespace client
