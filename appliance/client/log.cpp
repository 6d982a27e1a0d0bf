// camvoractl log [REQUEST] [--follow]
#include "client/commands.h"
#include "client/failure.h"
#include "client/loglines.h"
#include "client/operationlog.h"
#include "client/session.h"
#include "client/table.h"

#include <CLI/App.hpp>

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
    AddLogLines(table, lines);
    session.Print(lines, table);
}

void Log(Session& session, const LogArguments& arguments) {
    if (!arguments.requestId.empty()) {
        ShowLinesOf(session, arguments.requestId);
    } else if (arguments.follow) {
        FollowOperations(session);
    } else {
        ShowOperations(session);
    }
}

}  // namespace

void AddLog(CLI::App& program, Session& session) {
    CLI::App* command =
        program.add_subcommand("log", "Show the operation log, or what was logged for a request");
    const auto arguments = std::make_shared<LogArguments>();
    CLI::Option* request = command->add_option("REQUEST", arguments->requestId,
                                               "Id of a request, as failures, --no-wait and the log name it");
    command->add_flag("--follow", arguments->follow, "Go on showing entries as they come, until Ctrl-C")
        ->excludes(request);
    command->callback([&session, arguments] { Log(session, *arguments); });
}

}  // namespace client
