// The appliance's own client.
#pragma once

#include "e2e/appliance.h"
#include "support/program.h"

#include <json/value.h>

#include <string>
#include <vector>

namespace e2e {

// Starts it with these arguments.
Program StartCtl(const Appliance& appliance, const std::vector<std::string>& arguments);

// What it writes for programs; expects that it succeeds.
Json::Value Ctl(const Appliance& appliance, const std::vector<std::string>& arguments);

// A code with which a recording server called "recorder" can pair with the host.
std::string NewCode(const Appliance& host);

// Pairs them.
void Pair(const Appliance& host, const Appliance& recorder);

}  // namespace e2e
