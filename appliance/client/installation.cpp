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
#include <utility>

namespace client {
namespace {

constexpr std::chrono::minutes kUpdateLimit(121);  // a little more than the appliance's own of one request

constexpr char kInstallsOn[] =
    "The appliance goes on installing; \"camvoractl list\" shows what has come of it\n";

struct Seen {
    std::string requestId;
    std::string version;
};

// Returns the id of the request.
std::string Give(const Appliance& host, const Order& order) {
    const InterruptNote note(order.interruptNote);
    return host.Ask(order.method, order.params).requestId;
}

Seen GiveAndLook(Session& session, const InstallPlan& plan, const Order& order) {
    const Appliance& host = session.Host();
    Progress progress(session.ShowsProgress());
    progress.Step(order.words);
    std::string requestId = Give(host.Within(session.TimeLimit(kUpdateLimit)), order);
    progress.Step("Looking at what is installed and runs");
    std::string version = AwaitOutcome(host, plan, requestId, session.TimeLimit());
    return {std::move(requestId), std::move(version)};
}

void SayFailedPrograms(const Session& session, const Json::Value& programs) {
    for (const Json::Value& program : programs) {
        session.Say(Printable("Warning: " + ProgramText(program)));
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

void CarryOut(Session& session, const InstallPlan& plan, const Order& order, Json::Value document) {
    Seen seen;
    try {
        seen = GiveAndLook(session, plan, order);
    } catch (const Failure& failure) {
        throw Explained(session, plan, failure);
    }
    const Json::Value programs = FailedPrograms(session.Host(), seen.requestId);
    SayFailedPrograms(session, programs);
    document["version"] = seen.version;
    document["request"] = seen.requestId;
    document["failedPrograms"] = programs;
    session.Print(document, OutcomeTable(plan, seen.version));
}

void Install(Session& session, const InstallPlan& plan, const std::string& folder) {
    Order order{"Update",
                {},
                "The appliance installs " + plan.service.name + " " + plan.package.version,
                kInstallsOn};
    order.params["service"] = plan.service.number;
    if (!folder.empty()) {
        order.params["filePath"] = folder;
    }
    CarryOut(session, plan, order, PlanDocument(plan));
}

}  // namespace client
