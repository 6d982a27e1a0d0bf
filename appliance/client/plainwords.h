// Values of the appliance in plain words. A value of an unexpected type is shown as it is, a missing one is
// empty.
#pragma once

#include <json/value.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace client {

// "yes" or "no" for a boolean.
std::string YesNo(const Json::Value& value);

// "on" or "off" for a boolean.
std::string OnOff(const Json::Value& value);

// A size as in "3.2 MiB".
std::string SizeWords(std::uint64_t sizeBytes);

// A span of time as in "76 ms", "2.4 s", "12 s" or "3 min 5 s".
std::string DurationWords(std::chrono::milliseconds span);

// The first line of a text, without its end.
std::string FirstLine(const std::string& text);

}  // namespace client
