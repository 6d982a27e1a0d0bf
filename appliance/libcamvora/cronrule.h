// Rules for the appliance's schedule: a file with one line for each, as cron reads them.
#pragma once

#include <string>

namespace camvora {

// Makes the rule `name` in `folder`, which is made if absent, with the line `line`. Readers see all of it or
// what was there before, also after a power cut. Returns false, with that unchanged, when it cannot be
// written.
bool WriteRule(const std::string& folder, const std::string& name, const std::string& line);

// Removes the rule. Returns false when it is still there.
bool RemoveRule(const std::string& folder, const std::string& name);

}  // namespace camvora
