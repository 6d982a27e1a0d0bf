// The appliance's record of the programs that it has run, as far as installing is concerned.
#pragma once

#include <json/value.h>

#include <chrono>
#include <optional>
#include <string>

namespace client {

class Appliance;

// How long the programs of the last installation of an add-on have taken together. Nothing when the appliance
// has no record of one, or cannot be asked.
//   service  its short name
std::optional<std::chrono::milliseconds> LastInstallTime(const Appliance& host, const std::string& service);

// The programs that a request has run and that ended with anything but 0, an array as the appliance gives it.
// Scripts that an add-on does not have are not among them. Empty when the appliance cannot be asked.
Json::Value FailedPrograms(const Appliance& host, const std::string& requestId);

// A program and how it ended in a sentence for people, any bytes.
std::string ProgramText(const Json::Value& program);

}  // namespace client
