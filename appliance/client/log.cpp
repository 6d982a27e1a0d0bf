// camvoractl log REQUEST
#include "client/commands.h"
#include "client/failure.h"
#include "client/loglines.h"
#include "client/session.h"
#include "client/table.h"

#include <CLI/App.hpp>

#include <memory>

namespace client {
namespace {

void Log(Session& session, const std::string& requestId) {
    const Json::Value lines = session.Host().Log(requestId);
    if (lines.empty()) {
        throw Failure(ExitStatus::kNotFound, "The appliance has logged nothing for request " + requestId);
    }
    Table table({"Time", "Source", "Function", "Text"});
    AddLogLines(table, lines);
    session.Print(lines, table);
}

}  // namespace

void AddLog(CLI::App& program, Session& session) {
    CLI::App* command = program.add_subcommand("log", "Show what the appliance logged for a request");
    const auto requestId = std::make_shared<std::string>();
    command->add_option("REQUEST", *requestId, "Id of the request, as failures and --no-wait name it")
        ->required();
    command->callback([&session, requestId] { Log(session, *requestId); });
}

}  // namespace client
