// camvoractl apps [--lang LANGUAGE]
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/plainwords.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

Table AppTable(const Json::Value& data) {
    const Json::Value apps = Member(data, "appsStatus");
    if (!apps.isObject()) {
        throw Failure(ExitStatus::kFailed, "GetAppsStatus failed: the answer describes no applications");
    }
    Table table({"Application", "Title", "Path", "Enabled"});
    for (const std::string& id : apps.getMemberNames()) {
        const Json::Value& app = apps[id];
        table.AddRow({id, LeafText(Member(app, "title")), LeafText(Member(app, "path")),
                      YesNo(Member(app, "blEnabled"))});
    }
    return table;
}

void Apps(Session& session, const std::string& language) {
    Json::Value params;
    params["lang"] = language;
    const Json::Value data = session.Host().Call("GetAppsStatus", params);
    session.Print(data, AppTable(data));
}

}  // namespace

void AddApps(Command program, Session& session) {
    Command command = program.Add("apps", "Show the web applications");
    const auto language = std::make_shared<std::string>();
    command.Option("--lang", *language, "TEXT", "Language of the titles, as in \"de\"");
    command.Run([&session, language] { Apps(session, *language); });
}

}  // namespace client
