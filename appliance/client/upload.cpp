// camvoractl upload FILE SERVICE
#include "client/command.h"
#include "client/commands.h"
#include "client/jsontext.h"
#include "client/packageupload.h"
#include "client/progress.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct UploadArguments {
    std::string path;
    std::string service;
};

Table InfoTable(const Json::Value& info, const Service& service) {
    Table table;
    table.AddRow({"Add-on", service.name});
    table.AddRow({"Version", LeafText(Member(info, "version"))});
    table.AddRow({"Maintainer", LeafText(Member(info, "maintainer"))});
    table.AddRow({"Work directory", LeafText(Member(info, "filePath"))});
    return table;
}

void Upload(Session& session, const UploadArguments& arguments) {
    const PackageUpload package(arguments.path);
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, arguments.service);
    auto progress = std::make_unique<Progress>(session.ShowsProgress());
    const Json::Value info = package.Send(host, service, *progress, session.IsForPrograms());
    progress.reset();
    session.Print(info, InfoTable(info, service));
}

}  // namespace

void AddUpload(Command program, Session& session) {
    Command command = program.Add("upload", "Send a package file without installing it");
    command.Explain(
        "The appliance unpacks and checks the package, and keeps it until it is installed or another one "
        "comes.");
    const auto arguments = std::make_shared<UploadArguments>();
    command.Argument("FILE", arguments->path, "Package file");
    command.Argument("SERVICE", arguments->service, "Number or short name of the service");
    command.Run([&session, arguments] { Upload(session, *arguments); });
}

}  // namespace client
