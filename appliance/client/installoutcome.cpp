#include "client/installoutcome.h"

#include "client/appliance.h"
#include "client/failure.h"
#include "client/table.h"

#include <algorithm>
#include <iterator>
#include <thread>

namespace client {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPollInterval{250};
constexpr milliseconds kSecondLook{2000};

std::string CheckedVersion(const Appliance& host, const InstallPlan& plan) {
    std::string version = InstalledVersion(host, plan.service);
    const bool isAsPlanned =
        plan.package.version.empty() ? !version.empty() : version == plan.package.version;
    if (!isAsPlanned) {
        throw Failure(ExitStatus::kOtherOutcome,
                      plan.service.name + " " + plan.package.version + " was to be installed, but " +
                          (version.empty() ? "there is none" : version + " is there"));
    }
    return version;
}

std::vector<Service> Missing(const Appliance& host, const std::vector<Service>& wanted) {
    const std::vector<Service> running = RunningServicesIn(host.Call("List", Json::objectValue));
    std::vector<Service> missing;
    std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(missing), [&](const Service& service) {
        return std::none_of(running.begin(), running.end(),
                            [&](const Service& other) { return other.number == service.number; });
    });
    return missing;
}

void AwaitRunning(const Appliance& host, const InstallPlan& plan, const std::string& version,
                  std::chrono::seconds limit) {
    const steady_clock::time_point deadline = steady_clock::now() + limit;
    bool haveRun = plan.stopping.empty();
    for (;;) {
        const std::vector<Service> missing = Missing(host, plan.stopping);
        if (missing.empty() && haveRun) {
            return;
        }
        haveRun = missing.empty();
        if (!haveRun && steady_clock::now() >= deadline) {
            throw Failure(ExitStatus::kOtherOutcome,
                          plan.service.name + " " + version +
                              " is installed, but this does not run as before: " + NamesOf(missing));
        }
        std::this_thread::sleep_for(haveRun ? kSecondLook : kPollInterval);
    }
}

}  // namespace

std::string AwaitOutcome(const Appliance& host, const InstallPlan& plan, const std::string& requestId,
                         std::chrono::seconds limit) {
    try {
        std::string version = CheckedVersion(host, plan);
        AwaitRunning(host, plan, version, limit);
        return version;
    } catch (Failure& failure) {
        if (failure.requestId.empty()) {
            host.AddRequest(failure, requestId);
        }
        throw;
    }
}

Table OutcomeTable(const InstallPlan& plan, const std::string& version) {
    const std::string& before = plan.installedVersion;
    Table table;
    table.AddRow({plan.service.name + " " + version + " is installed" +
                  (before.empty() ? "" : ", in place of " + before)});
    if (!plan.stopping.empty()) {
        table.AddRow({"Running as before: " + NamesOf(plan.stopping)});
    }
    return table;
}

}  // namespace client
