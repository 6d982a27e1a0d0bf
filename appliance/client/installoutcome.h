// What has become of an installation.
#pragma once

#include "client/installplan.h"

#include <chrono>
#include <string>

namespace client {

// Looks at the appliance itself: it answers an installation with success whatever its programs did. Returns
// when the new version is in place and all that was stopped runs again, two seconds later too.
//   requestId  of the installation; failures come with its log lines
//   limit      for the services, from now on
//   returns    the version that is there: the one in the plan, or any where that has none
//   throws     Failure: kOtherOutcome, or as Appliance::Call does
std::string AwaitOutcome(const Appliance& host, const InstallPlan& plan, const std::string& requestId,
                         std::chrono::seconds limit);

// What AwaitOutcome has seen, for people.
Table OutcomeTable(const InstallPlan& plan, const std::string& version);

}  // namespace client
