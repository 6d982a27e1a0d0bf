// camvoractl install FILE [--yes | --dry-run]
#include "client/command.h"
#include "client/commands.h"
#include "client/consent.h"
#include "client/failure.h"
#include "client/installation.h"
#include "client/installplan.h"
#include "client/jsontext.h"
#include "client/packagecheck.h"
#include "client/packageupload.h"
#include "client/progress.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct InstallArguments {
    std::string path;
    Consent consent;
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
    Progress progress(session.ShowsProgress());
    const Json::Value info = upload.Send(host, service, progress, session.IsForPrograms());
    UnpackedPackage package{
        {serviceName, LeafText(Member(info, "version")), LeafText(Member(info, "maintainer"))},
        LeafText(Member(info, "filePath"))};
    if (package.folder.empty()) {  // the appliance would take that for another package
        throw Failure(ExitStatus::kFailed, "GetPkgInfo failed: the answer names no unpacked package");
    }
    return package;
}

void ShowPlan(Session& session, const PackageIdentity& identity) {
    const InstallPlan plan = MakePlan(session.Host(), identity);
    session.Print(PlanDocument(plan), PlanTable(plan));
}

void SendAndInstall(Session& session, const InstallArguments& arguments, const std::string& service) {
    const UnpackedPackage package = Send(session, arguments.path, service);
    const InstallPlan plan = MakePlan(session.Host(), package.identity);
    arguments.consent.Ask(session, PlanTable(plan), "Install it?", "Nothing was installed");
    Install(session, plan, package.folder);
}

void Run(Session& session, const InstallArguments& arguments) {
    arguments.consent.CheckCanBeHad(session);
    const PackageIdentity identity = Identify(session, arguments.path);
    if (arguments.consent.IsDryRun()) {
        ShowPlan(session, identity);
    } else {
        SendAndInstall(session, arguments, identity.service);
    }
}

}  // namespace

void AddInstall(Command program, Session& session) {
    Command command = program.Add("install", "Send a package file and install it");
    command.Explain(
        "The file is checked here first, then sent; the appliance unpacks and checks it. What would change "
        "is shown, and asked about, before anything is installed. Then it checks that the new version is "
        "in place and that what ran before runs again.");
    const auto arguments = std::make_shared<InstallArguments>();
    command.Argument("FILE", arguments->path, "Package file");
    arguments->consent.AddTo(command);
    command.Run([&session, arguments] { Run(session, *arguments); });
}

}  // namespace client
