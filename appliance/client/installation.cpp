#include "client/installation.h"

#include "client/failure.h"
#include "client/installoutcome.h"
#include "client/installplan.h"
#include "client/interruptnote.h"
#include "client/programruns.h"
#include "client/progress.h"
#include "client/session.h"
#include "client/table.h"
#include "client/terminaltext.h"

#include <chrono>

namespace client {
namespace {

constexpr std::chrono::minutes kUpdateLimit(121);  // a little more than the appliance's own of one request

constexpr char kGoesOn[] =
    "The appliance goes on installing; \"camvoractl list\" shows what has come of it\n";

// Returns the id of the request.
std::string Update(const Appliance& host, const InstallPlan& plan, const std::string& folder) {
    const InterruptNote note(kGoesOn);
    Json::Value params;
    params["service"] = plan.service.number;
    params["filePath"] = folder;
    return host.Ask("Update", params).requestId;
}

std::string UpdateAndLook(Session& session, const InstallPlan& plan, const std::string& folder) {
    const Appliance& host = session.Host();
    Progress progress(!session.IsForPrograms());
    progress.Step("The appliance installs " + plan.service.name + " " + plan.package.version);
    std::string requestId = Update(host.Within(session.TimeLimit(kUpdateLimit)), plan, folder);
    progress.Step("Looking at what is installed and runs");
    AwaitOutcome(host, plan, requestId, session.TimeLimit());
    return requestId;
}

void SayFailedPrograms(const Session& session, const Json::Value& programs) {
    for (const Json::Value& program : programs) {
        session.Say(Printable("Warning: " + FailedProgramText(program)));
    }
}

void SayInstalled(Session& session, const Service& service) {
    try {
        const std::string version = InstalledVersion(session.Host(), service);
        session.Say(Printable("Installed now: " + (version.empty() ? "none" : version)));
    } catch (const Failure&) {  // must not hide the failure that it was to complete
    }
}

// Tells what may be the reason and, after an error, what is in place.
Failure Explained(Session& session, const InstallPlan& plan, Failure failure) {
    const Json::Value programs = FailedPrograms(session.Host(), failure.requestId);
    SayFailedPrograms(session, programs);
    if (failure.code != 0) {
        SayInstalled(session, plan.service);
    }
    if (session.IsForPrograms() && failure.data.isNull()) {
        failure.data["failedPrograms"] = programs;
    }
    return failure;
}

}  // namespace

void Install(Session& session, const InstallPlan& plan, const std::string& folder) {
    std::string requestId;
    try {
        requestId = UpdateAndLook(session, plan, folder);
    } catch (const Failure& failure) {
        throw Explained(session, plan, failure);
    }
    const Json::Value programs = FailedPrograms(session.Host(), requestId);
    SayFailedPrograms(session, programs);
    Json::Value document = PlanDocument(plan);
    document["request"] = requestId;
    document["failedPrograms"] = programs;
    session.Print(document, OutcomeTable(plan));
}

}  // namespace client
