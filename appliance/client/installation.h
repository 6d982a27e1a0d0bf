// Installing a package that the appliance has unpacked.
#pragma once

#include <string>

namespace client {

class Session;
struct InstallPlan;

// Has the appliance install it, looks at what came of that, and prints it as the outcome. Programs that
// failed are told of beside it.
//   folder  where the package lies unpacked, as the appliance named it
//   throws  Failure: kOtherOutcome when what was seen is not what was planned, or as Appliance::Ask does
void Install(Session& session, const InstallPlan& plan, const std::string& folder);

}  // namespace client
