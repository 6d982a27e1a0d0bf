// camvoractl console
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/session.h"
#include "client/table.h"

namespace client {
namespace {

// A fragment is not sent to any server, so nothing but the page itself can use the code up.
void MakeLink(Session& session) {
    const Json::Value answer =
        session.Host().PostPage("/session/codes", Json::Value(Json::objectValue), "The sign-in code");
    const std::string code = LeafText(Member(answer, "code"));
    if (code.empty()) {
        throw Failure(ExitStatus::kFailed, "The sign-in code failed: the answer holds none");
    }
    const std::string link = session.FindLocation().url + "/#code=" + code;
    Json::Value data;
    data["link"] = link;
    data["validS"] = Member(answer, "validS");
    Table table;
    table.AddRow({link});
    session.Print(data, table);
    session.Say("The link signs one browser in, within " + LeafText(data["validS"]) + " seconds");
}

}  // namespace

void AddConsole(Command program, Session& session) {
    Command command = program.Add("console", "Print a link that signs a browser in");
    command.Explain(
        "It opens the appliance's web console. It works once, within ten minutes, for whoever has it: that "
        "browser may then do all that you may.");
    command.Run([&session] { MakeLink(session); });
}

}  // namespace client
