// camvoractl methods
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/session.h"
#include "client/table.h"

namespace client {
namespace {

Table MethodTable(const Json::Value& data) {
    const Json::Value apis = Member(data, "apis");
    if (!apis.isArray()) {
        throw Failure(ExitStatus::kFailed, "The list of methods failed: the answer holds no APIs");
    }
    Table table({"API", "Version", "Method"});
    for (const Json::Value& api : apis) {
        for (const Json::Value& method : Member(api, "methods")) {
            table.AddRow({LeafText(Member(api, "api")), LeafText(Member(api, "version")), LeafText(method)});
        }
    }
    return table;
}

void Methods(Session& session) {
    const Json::Value data = session.Host().Methods();
    session.Print(data, MethodTable(data));
}

}  // namespace

void AddMethods(Command program, Session& session) {
    program.Add("methods", "Show the methods that the appliance serves").Run([&session] {
        Methods(session);
    });
}

}  // namespace client
