// camvoractl download SERVICE, camvoractl cancel SERVICE
#include "client/command.h"
#include "client/commands.h"
#include "client/jsontext.h"
#include "client/releasedownload.h"
#include "client/releases.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"
#include "client/updatecheck.h"

#include <memory>

namespace client {
namespace {

void Download(Session& session, const std::string& name) {
    const Service service = ResolveListedService(session.Host(), name);
    const UpdateState state = CheckForRelease(session, service);
    if (!IsReleaseThere(state)) {
        PrintNothingNewer(session, service);
        return;
    }
    const std::string version = DownloadRelease(session, service, state);
    Json::Value data;
    data["service"] = service.number;
    data["status"] = static_cast<int>(UpdateState::kDownloaded);
    data["version"] = version;
    Table table;
    table.AddRow({service.name + " " + version + " is downloaded"});
    session.Print(data, table);
}

void Cancel(Session& session, const std::string& name) {
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, name);
    Json::Value params;
    params["service"] = service.number;
    (void)host.Call("DownloadCancel", params);
    const Json::Value left = DownloadOf(host, service);
    Json::Value data;
    data["service"] = service.number;
    data["download"] = left;
    Table table;
    table.AddRow({"No download of " + service.name + " is under way now"});
    if (constexpr int kReady = 2; Member(left, "status") == Json::Value(kReady)) {
        table.AddRow({LeafText(Member(left, "version")) + " was downloaded before, and stays"});
    }
    session.Print(data, table);
}

void AddOne(Command program, Session& session, const char* name, const char* help, const char* more,
            void (*run)(Session&, const std::string&)) {
    Command command = program.Add(name, help);
    command.Explain(more);
    const auto service = std::make_shared<std::string>();
    command.Argument("SERVICE", *service, "Number or short name of the service");
    command.Run([&session, service, run] { run(session, *service); });
}

}  // namespace

void AddDownload(Command program, Session& session) {
    AddOne(program, session, "download", "Download the newer release, without installing it",
           "The appliance downloads it, and this program shows how far it is; Ctrl-C cancels the download.",
           Download);
    AddOne(program, session, "cancel", "Cancel a download", "One that is complete is kept.", Cancel);
}

}  // namespace client
