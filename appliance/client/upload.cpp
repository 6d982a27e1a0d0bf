// camvoractl upload FILE SERVICE
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/formfile.h"
#include "client/jsontext.h"
#include "client/progress.h"
#include "client/refusal.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"

#include <filesystem>
#include <memory>

namespace client {
namespace {

constexpr char kField[] = "addonsSpkFile";

struct UploadArguments {
    std::string path;
    std::string service;
};

// Returns where the appliance has stored the file.
Json::Value Send(const Appliance& host, const FormFile& file, Progress& progress) {
    const auto sizeBytes = static_cast<double>(file.SizeBytes());
    const Json::Value data = host.Upload(file, [&progress, sizeBytes](std::uint64_t sentBytes) {
        progress.SetDone(static_cast<double>(sentBytes) / sizeBytes);
    });
    Json::Value pkgInfo = Member(data, "pkgInfo");
    if (!pkgInfo.isObject()) {
        throw Failure(ExitStatus::kFailed, "Upload failed: the answer names no stored file");
    }
    return pkgInfo;
}

Json::Value SendAndInspect(const Appliance& host, const FormFile& file, const std::string& name,
                           const Service& service, Progress& progress) {
    progress.Step("Sending " + name);
    Json::Value params;
    params["pkgInfo"] = Send(host, file, progress);
    params["service"] = service.number;
    progress.Step("The appliance unpacks and checks it");
    return host.Call("GetPkgInfo", params);
}

Table InfoTable(const Json::Value& info, const Service& service) {
    Table table;
    table.AddRow({"Add-on", service.name});
    table.AddRow({"Version", LeafText(Member(info, "version"))});
    table.AddRow({"Maintainer", LeafText(Member(info, "maintainer"))});
    table.AddRow({"Work directory", LeafText(Member(info, "filePath"))});
    return table;
}

void Upload(Session& session, const UploadArguments& arguments) {
    const FormFile file(kField, arguments.path);
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, arguments.service);
    const std::string name = std::filesystem::path(arguments.path).filename();
    auto progress = std::make_unique<Progress>(!session.IsForPrograms());
    try {
        const Json::Value info = SendAndInspect(host, file, name, service, *progress);
        progress.reset();
        session.Print(info, InfoTable(info, service));
    } catch (const Failure& failure) {
        throw Refusal(failure, name, session.IsForPrograms());
    }
}

}  // namespace

void AddUpload(Command program, Session& session) {
    Command command =
        program.Add("upload", "Send a package file to the appliance, which unpacks and checks it");
    const auto arguments = std::make_shared<UploadArguments>();
    command.Argument("FILE", arguments->path, "Package file");
    command.Argument("SERVICE", arguments->service, "Number or short name of the service");
    command.Run([&session, arguments] { Upload(session, *arguments); });
}

}  // namespace client
