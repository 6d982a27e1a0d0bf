// camvoractl restore SERVICE [--yes | --dry-run]
#include "client/appliancefacts.h"
#include "client/command.h"
#include "client/commands.h"
#include "client/consent.h"
#include "client/failure.h"
#include "client/installation.h"
#include "client/installplan.h"
#include "client/jsontext.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

constexpr char kRestoresOn[] =
    "The appliance goes on restoring; \"camvoractl list\" shows what has come of it\n";

struct RestoreArguments {
    std::string service;
    Consent consent;
};

void CheckFactoryCopy(const Appliance& host, const Service& service) {
    Json::Value params;
    params["service"] = service.number;
    if (Member(host.Call("GetInfo", params), "blFactoryCopy") != Json::Value(true)) {
        throw Failure(ExitStatus::kNotFound, service.name + " has no factory copy");
    }
}

// The package in the plan is the factory copy; its version is empty where that is not known.
InstallPlan MakeRestorePlan(Session& session, const std::string& name) {
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, name);
    CheckFactoryCopy(host, service);
    const std::string folder = host.HasRecords() ? session.Folder() : "";
    InstallPlan plan = MakePlan(host, {service.shortName, ReadFactoryVersion(folder, service.shortName), ""});
    plan.takes.reset();  // that of an installation
    return plan;
}

Table RestoreTable(const InstallPlan& plan) {
    const std::string& version = plan.package.version;
    Table table;
    table.AddRow({"Add-on", plan.service.name});
    table.AddRow({"Installed", plan.installedVersion});
    table.AddRow({"Factory copy", version.empty() ? "its version is not known here" : version});
    table.AddRow({"Stops meanwhile", StopWords(plan)});
    return table;
}

Json::Value RestoreDocument(const InstallPlan& plan) {
    Json::Value document = PlanDocument(plan);
    document.removeMember("change");
    document.removeMember("maintainer");
    document.removeMember("takesMs");
    return document;
}

Order RestoreOrder(const Service& service) {
    Order order{"Restore", {}, "The appliance restores " + service.name, kRestoresOn};
    order.params["service"] = service.number;
    order.params["serviceName"] = service.name;
    order.params["description"] = "restored by camvoractl";
    return order;
}

void Restore(Session& session, const RestoreArguments& arguments) {
    arguments.consent.CheckCanBeHad(session);
    const InstallPlan plan = MakeRestorePlan(session, arguments.service);
    if (arguments.consent.IsDryRun()) {
        session.Print(RestoreDocument(plan), RestoreTable(plan));
        return;
    }
    arguments.consent.Ask(session, RestoreTable(plan), "Put the factory copy in its place?",
                          "Nothing was restored");
    CarryOut(session, plan, RestoreOrder(plan.service), RestoreDocument(plan));
}

}  // namespace

void AddRestore(Command program, Session& session) {
    Command command = program.Add("restore", "Put an add-on's factory copy in its place");
    command.Explain(
        "That is the version with which the appliance left the factory. Shows what would change, and asks.");
    const auto arguments = std::make_shared<RestoreArguments>();
    command.Argument("SERVICE", arguments->service, "Number or short name of the service");
    arguments->consent.AddTo(command);
    command.Run([&session, arguments] { Restore(session, *arguments); });
}

}  // namespace client
