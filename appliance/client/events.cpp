// camvoractl events
#include "client/command.h"
#include "client/commands.h"
#include "client/eventparser.h"
#include "client/jsontext.h"
#include "client/localtime.h"
#include "client/output.h"
#include "client/reconnector.h"
#include "client/session.h"
#include "client/table.h"

#include <unistd.h>

#include <map>

namespace client {
namespace {

constexpr int kServiceChanged = 24;  // texts: service, action, "0"

struct ActionWord {
    const char* action;
    const char* word;
};

constexpr ActionWord kActionWords[] = {
    {"0", "stopped"},
    {"1", "started"},
    {"2", "updated"},
};

std::string WordFor(const std::string& action) {
    for (const ActionWord& row : kActionWords) {
        if (action == row.action) {
            return row.word;
        }
    }
    return "action " + action;
}

std::string TextAt(const Json::Value& notification, Json::ArrayIndex index) {
    const Json::Value texts = Member(notification, "texts");
    return texts.isArray() && index < texts.size() ? LeafText(texts[index]) : "";
}

// Follows the stream of events over any number of connections.
class Follower {
public:
    explicit Follower(Session& session) : session_(session), reconnector_(session) {}

    // Returns when nobody reads standard output any more.
    void Follow() {
        reconnector_.Run([this] { Listen(); });
    }

private:
    void Listen();
    void Take(const Event& event);
    void TakeSnapshot(const Json::Value& snapshot);
    Table Line(const Json::Value& notification) const;

    Session& session_;
    Reconnector reconnector_;
    std::string lastId_;                        // empty before the first event
    std::map<std::string, std::string> names_;  // of services, by number
};

void Follower::Listen() {
    EventParser parser([this](const Event& event) { Take(event); });
    session_.FindHost().Listen(lastId_, [&parser](std::string_view piece) {
        return parser.Take(piece) && !IsReaderGone(STDOUT_FILENO);
    });
}

void Follower::Take(const Event& event) {
    lastId_ = event.id;
    Json::Value data;
    if (!ParseJson(event.data, data)) {
        return;
    }
    if (event.name == "snapshot") {
        TakeSnapshot(data);
    } else if (event.name == "notification") {
        session_.Print(data, Line(data));
    }
}

void Follower::TakeSnapshot(const Json::Value& snapshot) {
    reconnector_.SetConnected();
    for (const Json::Value& service : Member(snapshot, "services")) {
        names_[LeafText(Member(service, "service"))] = LeafText(Member(service, "name"));
    }
    if (session_.IsForPrograms()) {
        session_.Print(snapshot, Table());
    }
}

Table Follower::Line(const Json::Value& notification) const {
    const std::string time = LocalTime(LeafText(Member(notification, "time")), "%Y-%m-%d %H:%M:%S");
    Table table;
    if (Member(notification, "type") == Json::Value(kServiceChanged)) {
        const std::string number = TextAt(notification, 0);
        const auto name = names_.find(number);
        table.AddRow({time, name == names_.end() ? "Service " + number : name->second,
                      WordFor(TextAt(notification, 1))});
    } else {
        table.AddRow({time, "Notification of type " + LeafText(Member(notification, "type")),
                      LeafText(Member(notification, "texts"))});
    }
    return table;
}

}  // namespace

void AddEvents(Command program, Session& session) {
    Command command = program.Add("events", "Follow what happens to the services");
    command.Explain(
        "Prints each start, stop and update as it happens, until Ctrl-C. When the connection is lost, it "
        "reconnects and goes on where it was.");
    command.Run([&session] { Follower(session).Follow(); });
}

}  // namespace client
