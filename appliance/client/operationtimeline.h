// What happened during an operation, in the order in which it happened.
#pragma once

#include <json/value.h>

namespace client {

class Appliance;
class Table;

// The moments of an operation, an array of {"time","kind","text"}: its begin and end, what the log and the
// operation log say of its request, and the programs that it ran, at their ends. Throws Failure as
// Appliance::Log does.
Json::Value TimelineOf(const Appliance& host, const Json::Value& operation);

// The same for people.
Table TimelineTable(const Json::Value& timeline);

}  // namespace client
