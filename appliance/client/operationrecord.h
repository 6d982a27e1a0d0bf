// Operations as the appliance keeps them: what it was told to do, from its begin to its end.
#pragma once

#include "client/terminal.h"

#include <json/value.h>

#include <map>
#include <string>

namespace client {

class Appliance;

// The short names of the services by number; empty where the appliance does not tell.
std::map<int, std::string> ServiceNames(const Appliance& host);

// The operation that `id` names: its number, or the id of its request. Throws Failure (kNotFound), or as
// Appliance::Operations does.
Json::Value FindOperation(const Appliance& host, const std::string& id);

bool IsRunning(const Json::Value& operation);

// What is done to what, as in "Update device_pack".
std::string OperationName(const Json::Value& operation, const std::map<int, std::string>& names);

// As in "2.1.0-0130 -> 2.3.0-0152"; one version where it stays, empty where there is none.
std::string OperationVersions(const Json::Value& operation);

// How long it has taken, so far when it is running, as in "2.4 s".
std::string OperationDuration(const Json::Value& operation);

// "running", "done", "failed: why" or "lost", and the colour of that.
std::string OutcomeWords(const Json::Value& operation);
Colour OutcomeColour(const Json::Value& operation);

}  // namespace client
