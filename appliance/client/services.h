// Services by the names that the appliance gives them.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace client {

class Appliance;

struct Service {
    int number;
    std::string shortName;
    std::string name = {};  // for people
};

// The array in the data of "List". Throws Failure (kFailed) when there is none.
Json::Value EntriesIn(const Json::Value& listData);

// The services in the data of "List". Entries that are not of the expected form are passed over.
//   throws  as EntriesIn does
std::vector<Service> ServicesIn(const Json::Value& listData);

// Those of them that run, and those that have packages.
//   throws  as EntriesIn does
std::vector<Service> RunningServicesIn(const Json::Value& listData);
std::vector<Service> ServicesWithPackagesIn(const Json::Value& listData);

// What that data says of the service; null for nothing.
//   throws  as EntriesIn does
Json::Value InfoOf(const Json::Value& listData, const Service& service);

// Their names for people, with ", " between.
std::string NamesOf(const std::vector<Service>& services);

// The service of that short name.
//   throws  Failure (kNotFound), with the names that may have been meant
Service FindByName(const std::vector<Service>& services, const std::string& name);

// The service that `text` names: the number or short name of one that the appliance lists. Throws Failure:
// kNotFound, kUsage for a number too large, or as Call does.
Service ResolveListedService(const Appliance& appliance, const std::string& text);

// The number of the service that `text` names: a number, which is taken as it is, or a short name, which
// the appliance is asked about. Throws Failure: kNotFound, kUsage for a number too large, or as Call does.
int ResolveService(const Appliance& appliance, const std::string& text);

}  // namespace client
