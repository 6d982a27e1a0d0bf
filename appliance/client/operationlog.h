// The operation log: what was done with the services, when, and by which request.
#pragma once

#include <json/value.h>

#include <string>

namespace client {

class Session;

// What an entry says, without time, event, and by whom.
std::string EntryText(const Json::Value& entry);

// Shows the newest entries. Throws Failure as Appliance::LogEntries does.
void ShowOperationLog(Session& session);

// Shows the newest entries, then others as they come. Returns when nobody reads standard output any more.
// Throws Failure as Reconnector::Run does.
void FollowOperationLog(Session& session);

}  // namespace client
