// The appliance's points in time for people.
#pragma once

#include <chrono>
#include <string>

namespace client {

// A time in the zone of this machine.
//   utc           as the appliance writes it: "2026-03-01T12:00:00.123Z"
//   format        of strftime
//   withFraction  puts the fraction of the second, as it stands there, behind it
//   returns       `utc` itself when it is of another form
std::string LocalTime(const std::string& utc, const char* format, bool withFraction = false);

// That time so much later, in the same form; empty when `utc` is of another one.
std::string TimeAfter(const std::string& utc, std::chrono::milliseconds span);

}  // namespace client
