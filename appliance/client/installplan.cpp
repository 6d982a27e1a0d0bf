#include "client/installplan.h"

#include "client/appliance.h"
#include "client/jsontext.h"
#include "client/programruns.h"
#include "client/table.h"
#include "client/versionorder.h"

namespace client {
namespace {

constexpr char kDevicePack[] = "device_pack";

struct Change {
    const char* name;
    const char* words;
};

constexpr Change kFirst{"first", "nothing is installed now"};
constexpr Change kSame{"same", "the same version again"};
constexpr Change kUpdate{"update", "newer"};
constexpr Change kDowngrade{"downgrade", "older: a downgrade"};

const Change& ChangeIn(const InstallPlan& plan) {
    if (plan.installedVersion.empty()) {
        return kFirst;
    }
    if (!IsAtLeast(plan.package.version, plan.installedVersion)) {
        return kDowngrade;
    }
    return IsAtLeast(plan.installedVersion, plan.package.version) ? kSame : kUpdate;
}

Json::Value ShortNames(const std::vector<Service>& services) {
    Json::Value names(Json::arrayValue);
    for (const Service& service : services) {
        names.append(service.shortName);
    }
    return names;
}

std::string TimeWords(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(time).count();
    return (seconds <= 1 ? "a second" : std::to_string(seconds) + " seconds") + ", as the last time";
}

}  // namespace

std::string InstalledVersion(const Appliance& host, const Service& service) {
    Json::Value params;
    params["service"] = service.number;
    return LeafText(Member(host.Call("GetInfo", params), "version"));
}

InstallPlan MakePlan(const Appliance& host, const PackageIdentity& package) {
    const Json::Value listData = host.Call("List", Json::objectValue);
    InstallPlan plan;
    plan.service = FindByName(ServicesIn(listData), package.service);
    plan.package = package;
    plan.installedVersion = InstalledVersion(host, plan.service);
    plan.stopsAll = package.service == kDevicePack;
    plan.takes = LastInstallTime(host, package.service);
    for (const Service& running : RunningServicesIn(listData)) {
        if (plan.stopsAll || running.number == plan.service.number) {
            plan.stopping.push_back(running);
        }
    }
    return plan;
}

std::string StopWords(const InstallPlan& plan) {
    const std::string names = NamesOf(plan.stopping);
    if (plan.stopsAll) {
        return "all of Camvora; " + (names.empty() ? "no service runs now" : "running now: " + names);
    }
    return names.empty() ? "nothing" : names;
}

Table PlanTable(const InstallPlan& plan) {
    Table table;
    table.AddRow({"Add-on", plan.service.name});
    if (!plan.package.maintainer.empty()) {
        table.AddRow({"Maintainer", plan.package.maintainer});
    }
    table.AddRow({"Installed", plan.installedVersion});
    table.AddRow({"To install", plan.package.version + " (" + ChangeIn(plan).words + ")"});
    table.AddRow({"Stops meanwhile", StopWords(plan)});
    if (plan.takes) {
        table.AddRow({"Takes about", TimeWords(*plan.takes)});
    }
    return table;
}

Json::Value PlanDocument(const InstallPlan& plan) {
    Json::Value document;
    document["service"] = plan.service.number;
    document["maintainer"] = plan.package.maintainer;
    document["installedVersion"] = plan.installedVersion;
    document["version"] = plan.package.version;
    document["change"] = ChangeIn(plan).name;
    document["stopsAll"] = plan.stopsAll;
    document["stopping"] = ShortNames(plan.stopping);
    document["takesMs"] = plan.takes ? Json::Value(Json::Int64{plan.takes->count()}) : Json::Value();
    return document;
}

}  // namespace client
