// camvoractl wait ID
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/operationrecord.h"
#include "client/progress.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>
#include <thread>

namespace client {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPollInterval{250};
constexpr std::chrono::hours kLongestWork{24};

// Returns the operation when it is over.
Json::Value AwaitEnd(const Session& session, const Appliance& host, Json::Value operation,
                     const std::string& name) {
    const std::chrono::seconds limit = session.TimeLimit(kLongestWork);
    const auto deadline = steady_clock::now() + limit;
    const std::string number = LeafText(Member(operation, "id"));
    Progress progress(session.ShowsProgress());
    progress.Step("Waiting for the end of " + name);
    while (IsRunning(operation)) {
        if (steady_clock::now() >= deadline) {
            throw Failure(ExitStatus::kTimedOut,
                          "After " + std::to_string(limit.count()) + " s, " + name + " is still under way");
        }
        std::this_thread::sleep_for(kPollInterval);
        operation = FindOperation(host, number);
    }
    return operation;
}

Failure FailureOf(const Session& session, const Appliance& host, const Json::Value& operation,
                  const std::string& name) {
    const bool isLost = Member(operation, "outcome") == Json::Value("lost");
    Failure failure(isLost ? ExitStatus::kOtherOutcome : ExitStatus::kFailed,
                    isLost ? "Nobody saw the end of " + name + ": the appliance's HTTP process ended before"
                           : name + " " + OutcomeWords(operation));
    const Json::Value code = Member(operation, "code");
    failure.code = code.isInt() ? code.asInt() : 0;
    if (session.IsForPrograms()) {
        failure.data = operation;
    }
    host.AddRequest(failure, LeafText(Member(operation, "request")));
    return failure;
}

void Wait(Session& session, const std::string& id) {
    const Appliance& host = session.Host();
    const Json::Value begun = FindOperation(host, id);
    const std::string name = OperationName(begun, ServiceNames(host));
    const Json::Value operation = AwaitEnd(session, host, begun, name);
    if (Member(operation, "outcome") != Json::Value("done")) {
        throw Failure(FailureOf(session, host, operation, name));
    }
    Table table;
    table.AddRow({name + " is done, after " + OperationDuration(operation)});
    session.Print(operation, table);
}

}  // namespace

void AddWait(Command program, Session& session) {
    Command command = program.Add("wait", "Wait for the end of an operation");
    command.Explain(
        "Exits with 0 when the operation is done, with 1 and its log when it has failed, with 9 when nobody "
        "saw its end, and with 8 when the time of --timeout is up.");
    const auto id = std::make_shared<std::string>();
    command.Argument("ID", *id, "Number of the operation, or the id of its request, as --no-wait prints it");
    command.Run([&session, id] { Wait(session, *id); });
}

}  // namespace client
