#include "client/operationlog.h"

#include "client/failure.h"
#include "client/jsontext.h"
#include "client/localtime.h"
#include "client/output.h"
#include "client/reconnector.h"
#include "client/session.h"
#include "client/table.h"

#include <unistd.h>

#include <optional>
#include <string>
#include <thread>

namespace client {
namespace {

constexpr std::chrono::milliseconds kPollInterval{500};
constexpr int kAddOnControlled = 0x133000B5;  // texts: name of the service, description, ""

std::string EventOf(const Json::Value& operation) {
    const Json::Value event = Member(operation, "event");
    return event == Json::Value(kAddOnControlled) ? "Add-on service" : "Event " + LeafText(event);
}

std::string TextsOf(const Json::Value& operation) {
    std::string joined;
    for (const Json::Value& entry : Member(operation, "texts")) {
        const std::string text = LeafText(entry);
        joined += (joined.empty() || text.empty() ? "" : ": ") + text;
    }
    return joined;
}

void AddOperation(Table& table, const Json::Value& operation) {
    table.AddRow({LocalTime(LeafText(Member(operation, "time")), "%Y-%m-%d %H:%M:%S"), EventOf(operation),
                  TextsOf(operation), LeafText(Member(operation, "who")),
                  LeafText(Member(operation, "request"))});
}

// Shows the entries of the operation log as they come, the present ones first.
class OperationFollower {
public:
    explicit OperationFollower(Session& session) : session_(session), reconnector_(session) {}

    // Returns when nobody reads standard output any more.
    void Follow() {
        reconnector_.Run([this] { Poll(); });
    }

private:
    void Poll() {
        const Appliance host = session_.FindHost();
        while (!IsReaderGone(STDOUT_FILENO)) {
            const Json::Value operations = host.Operations(lastId_);
            reconnector_.SetConnected();
            for (const Json::Value& operation : operations) {
                Show(operation);
            }
            if (operations.empty()) {
                std::this_thread::sleep_for(kPollInterval);
            }
        }
    }

    void Show(const Json::Value& operation) {
        const Json::Value id = Member(operation, "id");
        if (!id.isInt64()) {
            throw Failure(ExitStatus::kFailed, "The operation log failed: an entry has no id");
        }
        lastId_ = id.asInt64();
        Table line;
        AddOperation(line, operation);
        session_.Print(operation, line);
    }

    Session& session_;
    Reconnector reconnector_;
    std::optional<Json::Int64> lastId_;
};

}  // namespace

void ShowOperations(Session& session) {
    const Json::Value operations = session.Host().Operations(std::nullopt);
    Table table({"Time", "Event", "Text", "Who", "Request"});
    for (const Json::Value& operation : operations) {
        AddOperation(table, operation);
    }
    session.Print(operations, table);
}

void FollowOperations(Session& session) {
    OperationFollower(session).Follow();
}

}  // namespace client
