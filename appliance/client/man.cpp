// camvoractl man
#include "client/command.h"
#include "client/commands.h"
#include "client/manpage.h"
#include "client/session.h"

namespace client {
namespace {

void PrintPage(const Session& session, const CommandDescription& program) {
    const std::string page = ManualPage(program);
    Json::Value data;
    data["page"] = page;
    session.PrintText(data, page);
}

}  // namespace

void AddMan(Command program, Session& session) {
    Command command = program.Add("man", "Print the manual page");
    command.Explain("To read it: camvoractl man | man -l -");
    command.Run([&session, program] { PrintPage(session, program.Description()); });
}

}  // namespace client
