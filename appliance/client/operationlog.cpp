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

std::string EventOf(const Json::Value& entry) {
    const Json::Value event = Member(entry, "event");
    return event == Json::Value(kAddOnControlled) ? "Add-on service" : "Event " + LeafText(event);
}

void AddEntry(Table& table, const Json::Value& entry) {
    table.AddRow({LocalTime(LeafText(Member(entry, "time")), "%Y-%m-%d %H:%M:%S"), EventOf(entry),
                  EntryText(entry), LeafText(Member(entry, "who")), LeafText(Member(entry, "request"))});
}

// Shows the entries of the operation log as they come, the present ones first.
class EntryFollower {
public:
    explicit EntryFollower(Session& session) : session_(session), reconnector_(session) {}

    // Returns when nobody reads standard output any more.
    void Follow() {
        reconnector_.Run([this] { Poll(); });
    }

private:
    void Poll() {
        const Appliance host = session_.FindHost();
        while (!IsReaderGone(STDOUT_FILENO)) {
            const Json::Value entries = host.LogEntries(lastId_);
            reconnector_.SetConnected();
            for (const Json::Value& entry : entries) {
                Show(entry);
            }
            if (entries.empty()) {
                std::this_thread::sleep_for(kPollInterval);
            }
        }
    }

    void Show(const Json::Value& entry) {
        const Json::Value id = Member(entry, "id");
        if (!id.isInt64()) {
            throw Failure(ExitStatus::kFailed, "The operation log failed: an entry has no id");
        }
        lastId_ = id.asInt64();
        Table line;
        AddEntry(line, entry);
        session_.Print(entry, line);
    }

    Session& session_;
    Reconnector reconnector_;
    std::optional<Json::Int64> lastId_;
};

}  // namespace

std::string EntryText(const Json::Value& entry) {
    std::string joined;
    for (const Json::Value& part : Member(entry, "texts")) {
        const std::string text = LeafText(part);
        joined += (joined.empty() || text.empty() ? "" : ": ") + text;
    }
    return joined;
}

void ShowOperationLog(Session& session) {
    const Json::Value entries = session.Host().LogEntries(std::nullopt);
    Table table({"Time", "Event", "Text", "Who", "Request"});
    for (const Json::Value& entry : entries) {
        AddEntry(table, entry);
    }
    session.Print(entries, table);
}

void FollowOperationLog(Session& session) {
    EntryFollower(session).Follow();
}

}  // namespace client
