// Putting another tree of an add-on in place.
#pragma once

#include <json/value.h>

#include <string>

namespace client {

class Session;
struct InstallPlan;

// What the appliance is asked for.
struct Order {
    const char* method;
    Json::Value params;
    std::string words;          // what it does meanwhile, for people
    const char* interruptNote;  // as InterruptNote takes it
};

// Has the appliance carry out an order, looks at what came of that, and prints it as the outcome. Programs
// that failed are told of beside it.
//   plan      of what is to be there afterwards
//   document  for programs, to which what was seen is added
//   throws    Failure: kOtherOutcome when what was seen is not what was planned, or as Appliance::Ask does
void CarryOut(Session& session, const InstallPlan& plan, const Order& order, Json::Value document);

// The same for the package in the plan.
//   folder  where it lies unpacked, as the appliance named it; empty for the release that is downloaded
void Install(Session& session, const InstallPlan& plan, const std::string& folder);

}  // namespace client
