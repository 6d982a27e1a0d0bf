// camvoractl call METHOD [name=value ...]
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/parameters.h"
#include "client/session.h"
#include "client/table.h"

#include <algorithm>
#include <memory>

namespace client {
namespace {

struct CallArguments {
    std::string method;
    std::vector<std::string> params;
};

bool IsMethodCharacter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '_';
}

// The name becomes a part of the address.
void CheckMethod(const std::string& method) {
    if (method.empty() || !std::all_of(method.begin(), method.end(), IsMethodCharacter)) {
        throw Failure(ExitStatus::kUsage, "\"" + method + "\" cannot be the name of a method");
    }
}

Table LeafTable(const Json::Value& data) {
    Table table;
    for (const Leaf& leaf : Leaves(data)) {
        table.AddRow({leaf.path, leaf.text});
    }
    return table;
}

void Call(Session& session, const CallArguments& arguments) {
    CheckMethod(arguments.method);
    const Json::Value params = ParseParameters(arguments.params);
    const Json::Value data = session.Host().Call(arguments.method, params);
    session.Print(data, data.isNull() ? Table() : LeafTable(data));
    if (data.isNull()) {
        session.Say("Done. The appliance had nothing to report.");
    }
}

}  // namespace

void AddCall(Command program, Session& session) {
    Command command = program.Add("call", "Call a method of the web API");
    command.Explain("\"camvoractl methods\" shows which there are.");
    const auto arguments = std::make_shared<CallArguments>();
    command.Argument("METHOD", arguments->method, "Name of the method");
    command.OptionalArguments("PARAMETER", arguments->params,
                              "name=value: JSON where it is JSON, otherwise text");
    command.Run([&session, arguments] { Call(session, *arguments); });
}

}  // namespace client
