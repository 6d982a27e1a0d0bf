// camvoractl log [REQUEST] [--follow]
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/loglines.h"
#include "client/operationlog.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

struct LogArguments {
    std::string requestId;
    bool follow = false;
};

void ShowLinesOf(Session& session, const std::string& requestId) {
    const Json::Value lines = session.Host().Log(requestId);
    if (lines.empty()) {
        throw Failure(ExitStatus::kNotFound, "The appliance has logged nothing for request " + requestId);
    }
    Table table({"Time", "Source", "Function", "Text"});
    table.KeepWhole();
    AddLogLines(table, lines);
    session.Print(lines, table);
}

void Log(Session& session, const LogArguments& arguments) {
    if (!arguments.requestId.empty()) {
        ShowLinesOf(session, arguments.requestId);
    } else if (arguments.follow) {
        FollowOperationLog(session);
    } else {
        ShowOperationLog(session);
    }
}

}  // namespace

void AddLog(Command program, Session& session) {
    Command command = program.Add("log", "Show the operation log, or a request's log");
    command.Explain(
        "Without REQUEST, shows what was done to the services, and by whom; with it, what the appliance "
        "logged while it served that request.");
    const auto arguments = std::make_shared<LogArguments>();
    command.OptionalArgument("REQUEST", arguments->requestId,
                             "Id of a request, as shown by failures, --no-wait and the log");
    command.Flag("--follow", arguments->follow, "Keep showing entries as they come, until Ctrl-C");
    command.Exclude("--follow", "REQUEST");
    command.Run([&session, arguments] { Log(session, *arguments); });
}

}  // namespace client
