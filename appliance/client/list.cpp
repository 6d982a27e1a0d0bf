// camvoractl list
#include "client/command.h"
#include "client/commands.h"
#include "client/jsontext.h"
#include "client/servicefields.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"

namespace client {
namespace {

Table ServiceTable(const Json::Value& data) {
    Table table(FieldLabels());
    for (const Json::Value& entry : EntriesIn(data)) {
        const Json::Value info = Member(entry, "info");
        table.AddRow(FieldWords(info));
        table.Paint(kStatusField, StatusColour(info));
    }
    return table;
}

void List(Session& session) {
    const Json::Value data = session.Host().Call("List", Json::objectValue);
    session.Print(data, ServiceTable(data));
}

}  // namespace

void AddList(Command program, Session& session) {
    program.Add("list", "Show all services").Run([&session] { List(session); });
}

}  // namespace client
