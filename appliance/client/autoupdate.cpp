// camvoractl auto-update SERVICE on|off
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/plainwords.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct AutoUpdateArguments {
    std::string service;
    std::string wish;
};

bool IsOn(const std::string& wish) {
    if (wish != "on" && wish != "off") {
        throw Failure(ExitStatus::kUsage, "\"" + wish + "\" is neither \"on\" nor \"off\"");
    }
    return wish == "on";
}

void SetAutoUpdate(Session& session, const AutoUpdateArguments& arguments) {
    Json::Value params;
    params["blEnable"] = IsOn(arguments.wish);
    const Appliance& host = session.Host();
    const Service service = ResolveListedService(host, arguments.service);
    params["service"] = service.number;
    const std::string requestId = host.Ask("SetAutoUpdate", params).requestId;
    const Json::Value seen = Member(host.Call("GetInfo", params), "blAutoUpdate");
    const std::string sentence = "Automatic update of " + service.name + " is " + OnOff(seen);
    if (seen != params["blEnable"]) {
        Failure failure(ExitStatus::kOtherOutcome, sentence);
        host.AddRequest(failure, requestId);
        throw Failure(failure);
    }
    Json::Value data;
    data["service"] = service.number;
    data["blAutoUpdate"] = seen;
    Table table;
    table.AddRow({sentence});
    session.Print(data, table);
}

}  // namespace

void AddAutoUpdate(Command program, Session& session) {
    Command command = program.Add("auto-update", "Switch the automatic update of an add-on");
    command.Explain(
        "While it is on, the appliance looks for a newer release every day, at a time of its own, and "
        "installs it.");
    const auto arguments = std::make_shared<AutoUpdateArguments>();
    command.Argument("SERVICE", arguments->service, "Number or short name of the service");
    command.Argument("on|off", arguments->wish, "Whether newer releases are installed every day");
    command.Run([&session, arguments] { SetAutoUpdate(session, *arguments); });
}

}  // namespace client
