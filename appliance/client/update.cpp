// camvoractl update SERVICE [--yes | --dry-run]
#include "client/command.h"
#include "client/commands.h"
#include "client/consent.h"
#include "client/failure.h"
#include "client/installation.h"
#include "client/installplan.h"
#include "client/jsontext.h"
#include "client/plainwords.h"
#include "client/releasedownload.h"
#include "client/releases.h"
#include "client/session.h"
#include "client/table.h"
#include "client/updatecheck.h"

#include <memory>

namespace client {
namespace {

struct UpdateArguments {
    std::string service;
    Consent consent;
};

struct UpdatePlan {
    InstallPlan install;
    Json::Value release;
};

// A download that has begun is not always that of the newest release.
UpdatePlan MakeUpdatePlan(const Appliance& host, const Service& service, UpdateState state) {
    const bool isChosen = state == UpdateState::kDownloaded || state == UpdateState::kDownloading;
    const Json::Value release = ReleaseOf(host, service);
    const std::string newest = LeafText(Member(release, "version"));
    const std::string version = isChosen ? LeafText(Member(DownloadOf(host, service), "version")) : newest;
    if (version.empty()) {
        throw Failure(ExitStatus::kFailed,
                      "The appliance does not say which release of " + service.name + " is the newer one");
    }
    return {MakePlan(host, {service.shortName, version, ""}), version == newest ? release : Json::Value()};
}

Table UpdatePlanTable(const UpdatePlan& plan) {
    Table table = PlanTable(plan.install);
    if (!plan.release.isNull()) {
        table.AddRow({"Released", LeafText(Member(plan.release, "date"))});
        table.AddRow({"Notes", FirstLine(LeafText(Member(plan.release, "notes")))});
    }
    return table;
}

// What was agreed to is what is installed, and nothing that came meanwhile.
void DownloadAndInstall(Session& session, const InstallPlan& plan, UpdateState state) {
    const std::string version = DownloadRelease(session, plan.service, state);
    if (version != plan.package.version) {
        throw Failure(ExitStatus::kOtherOutcome, plan.service.name + " " + plan.package.version +
                                                     " was to be downloaded, but " + version +
                                                     " was; nothing was installed");
    }
    Install(session, plan, "");
}

void Update(Session& session, const UpdateArguments& arguments) {
    arguments.consent.CheckCanBeHad(session);
    const Appliance& host = session.Host();
    if (!host.HasRecords()) {
        throw Failure(ExitStatus::kUsage, "A paired server does not say what would change; update it there");
    }
    const Service service = ResolveListedService(host, arguments.service);
    const UpdateState state = CheckForRelease(session, service);
    if (!IsReleaseThere(state)) {
        PrintNothingNewer(session, service);
        return;
    }
    const UpdatePlan plan = MakeUpdatePlan(host, service, state);
    if (arguments.consent.IsDryRun()) {
        session.Print(PlanDocument(plan.install), UpdatePlanTable(plan));
        return;
    }
    arguments.consent.Ask(session, UpdatePlanTable(plan), "Download and install it?",
                          "Nothing was installed");
    DownloadAndInstall(session, plan.install, state);
}

}  // namespace

void AddUpdate(Command program, Session& session) {
    Command command = program.Add("update", "Download the newer release and install it");
    command.Explain(
        "Shows the release and what would change, asks, has the appliance download it, and installs it.");
    const auto arguments = std::make_shared<UpdateArguments>();
    command.Argument("SERVICE", arguments->service, "Number or short name of the service");
    arguments->consent.AddTo(command);
    command.Run([&session, arguments] { Update(session, *arguments); });
}

}  // namespace client
