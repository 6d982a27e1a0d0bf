// What an installation is going to change.
#pragma once

#include "client/packagerules.h"
#include "client/services.h"

#include <json/value.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace client {

class Appliance;
class Table;

struct InstallPlan {
    Service service;
    PackageIdentity package;
    std::string installedVersion;                    // empty when nothing is installed
    bool stopsAll = false;                           // the main package with all that it runs
    std::vector<Service> stopping;                   // what runs now and is stopped meanwhile
    std::optional<std::chrono::milliseconds> takes;  // as the last time
};

// The version of the add-on that is installed, empty for none. Throws Failure as Appliance::Call does.
std::string InstalledVersion(const Appliance& host, const Service& service);

// Asks the appliance what the package would change. Throws Failure as Appliance::Call does, and kNotFound
// when the appliance has no such service.
InstallPlan MakePlan(const Appliance& host, const PackageIdentity& package);

// What is stopped meanwhile, for people.
std::string StopWords(const InstallPlan& plan);

// The plan for people, and for programs. A maintainer that is not known is left out.
Table PlanTable(const InstallPlan& plan);
Json::Value PlanDocument(const InstallPlan& plan);

}  // namespace client
