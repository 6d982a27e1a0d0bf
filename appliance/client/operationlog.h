// The operation log: what was done with the services, when, and by which request.
#pragma once

namespace client {

class Session;

// Shows the newest entries. Throws Failure as Appliance::Operations does.
void ShowOperations(Session& session);

// Shows the newest entries, then others as they come. Returns when nobody reads standard output any more.
// Throws Failure as Reconnector::Run does.
void FollowOperations(Session& session);

}  // namespace client
