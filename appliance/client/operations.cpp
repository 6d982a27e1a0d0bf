// camvoractl operations [ID]
#include "client/command.h"
#include "client/commands.h"
#include "client/jsontext.h"
#include "client/localtime.h"
#include "client/operationrecord.h"
#include "client/operationtimeline.h"
#include "client/session.h"
#include "client/table.h"

#include <unistd.h>

#include <memory>

namespace client {
namespace {

using Names = std::map<int, std::string>;

constexpr char kTimeForm[] = "%Y-%m-%d %H:%M:%S";
constexpr char kShortTimeForm[] = "%m-%d %H:%M:%S";

Table OperationTable(const Json::Value& operations, const Names& names) {
    constexpr std::size_t kOutcomeColumn = 4;
    Table table({"ID", "Begin", "By", "What", "Outcome", "Version", "Duration"});
    for (const Json::Value& operation : operations) {
        table.AddRow({LeafText(Member(operation, "id")),
                      LocalTime(LeafText(Member(operation, "begin")), kShortTimeForm),
                      LeafText(Member(operation, "who")), OperationName(operation, names),
                      OutcomeWords(operation), OperationVersions(operation), OperationDuration(operation)});
        table.Paint(kOutcomeColumn, OutcomeColour(operation));
    }
    return table;
}

Table DetailTable(const Json::Value& operation, const Names& names) {
    Table table;
    table.AddRow({"Operation", LeafText(Member(operation, "id"))});
    table.AddRow({"Request", LeafText(Member(operation, "request"))});
    table.AddRow({"What", OperationName(operation, names)});
    table.AddRow({"By", LeafText(Member(operation, "who"))});
    table.AddRow({"Version", OperationVersions(operation)});
    table.AddRow({"Begin", LocalTime(LeafText(Member(operation, "begin")), kTimeForm)});
    table.AddRow({"Duration", OperationDuration(operation)});
    table.AddRow({"Outcome", OutcomeWords(operation)});
    table.Paint(1, OutcomeColour(operation));
    return table;
}

void ShowOperations(Session& session) {
    const Json::Value operations = session.Host().Operations();
    session.Print(operations, OperationTable(operations, ServiceNames(session.Host())));
}

void ShowOperation(Session& session, const std::string& id) {
    const Json::Value operation = FindOperation(session.Host(), id);
    const Json::Value timeline = TimelineOf(session.Host(), operation);
    Json::Value data;
    data["operation"] = operation;
    data["timeline"] = timeline;
    const Terminal terminal = TerminalAt(STDOUT_FILENO);
    session.PrintText(data, DetailTable(operation, ServiceNames(session.Host())).Text(terminal) + "\n" +
                                TimelineTable(timeline).Text(terminal));
}

}  // namespace

void AddOperations(Command program, Session& session) {
    Command command = program.Add("operations", "Show what was done, or all about one operation");
    command.Explain(
        "An operation begins with a request and ends when its work has ended, which may be long after the "
        "answer. Of one operation, the timeline is shown: the programs that it ran, its log lines, and its "
        "operation-log entries.");
    const auto id = std::make_shared<std::string>();
    command.OptionalArgument("ID", *id, "Number of the operation, or the id of its request");
    command.Run([&session, id] { id->empty() ? ShowOperations(session) : ShowOperation(session, *id); });
}

}  // namespace client
