// How the appliance stands, as those are shown it who watch.
#pragma once

#include "host/reply.h"

namespace host {

// The members "appliance" as below, "pairs", "services", "downloads", "releases" and "operations" (those that
// run), each whole, and "lastOperation", the id of the newest. Any thread may call. Throws std::exception
// when the store cannot be read.
Json::Value ApplianceState();

// Answers with what the appliance is: its name, its model, the version of its package, whether it is a CMS
// host and whether the package is started.
Reply ReplyWithAppliance();

}  // namespace host
