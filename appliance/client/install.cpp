// camvoractl install FILE [--yes | --dry-run]
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/installation.h"
#include "client/installplan.h"
#include "client/jsontext.h"
#include "client/packagecheck.h"
#include "client/packageupload.h"
#include "client/progress.h"
#include "client/question.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct InstallArguments {
    std::string path;
    bool isAgreed = false;
    bool isDryRun = false;
};

// What the appliance has made of the package that was sent.
struct UnpackedPackage {
    PackageIdentity identity;
    std::string folder;
};

// What a paired server compares with is not known here.
PackageIdentity Identify(Session& session, const std::string& path) {
    const PackageCheck check = CheckPackage(path, session.Host().HasRecords() ? session.Folder() : "");
    if (!check.identity || !BrokenRules(check.verdicts).empty()) {
        throw RuleFailure(path, check.verdicts, session.IsForPrograms());
    }
    return *check.identity;
}

UnpackedPackage Send(Session& session, const std::string& path, const std::string& serviceName) {
    const PackageUpload upload(path);
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, serviceName);
    Progress progress(!session.IsForPrograms());
    const Json::Value info = upload.Send(host, service, progress, session.IsForPrograms());
    UnpackedPackage package{
        {serviceName, LeafText(Member(info, "version")), LeafText(Member(info, "maintainer"))},
        LeafText(Member(info, "filePath"))};
    if (package.folder.empty()) {  // the appliance would take that for another package
        throw Failure(ExitStatus::kFailed, "GetPkgInfo failed: the answer names no unpacked package");
    }
    return package;
}

void SayPlan(const Session& session, const InstallPlan& plan) {
    std::string text = PlanTable(plan).Text();
    text.pop_back();
    session.Say(text);
}

void ShowPlan(Session& session, const PackageIdentity& identity) {
    const InstallPlan plan = MakePlan(session.Host(), identity);
    session.Print(PlanDocument(plan), PlanTable(plan));
}

void SendAndInstall(Session& session, const std::string& path, const std::string& service, bool isAgreed) {
    const UnpackedPackage package = Send(session, path, service);
    const InstallPlan plan = MakePlan(session.Host(), package.identity);
    SayPlan(session, plan);
    if (!isAgreed && !IsAgreed("Install it?")) {
        throw Failure(ExitStatus::kFailed, "Nothing was installed");
    }
    Install(session, plan, package.folder);
}

void Run(Session& session, const InstallArguments& arguments) {
    const bool canAsk = !session.IsForPrograms() && CanAsk();
    if (!arguments.isAgreed && !arguments.isDryRun && !canAsk) {
        throw Failure(
            ExitStatus::kUsage,
            "There is nobody to ask: --yes installs without asking, --dry-run shows what would change");
    }
    const PackageIdentity identity = Identify(session, arguments.path);
    if (arguments.isDryRun) {
        ShowPlan(session, identity);
    } else {
        SendAndInstall(session, arguments.path, identity.service, arguments.isAgreed);
    }
}

}  // namespace

void AddInstall(Command program, Session& session) {
    Command command = program.Add("install", "Send a package file to the appliance and install it");
    const auto arguments = std::make_shared<InstallArguments>();
    command.Argument("FILE", arguments->path, "Package file");
    command.Flag("-y,--yes", arguments->isAgreed, "Do not ask");
    command.Flag("-n,--dry-run", arguments->isDryRun, "Show what would change, and send nothing");
    command.Exclude("--yes", "--dry-run");
    command.Run([&session, arguments] { Run(session, *arguments); });
}

}  // namespace client
