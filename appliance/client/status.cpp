// camvoractl status SERVICE
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/servicefields.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

// What only some services have.
struct Detail {
    const char* label;
    const char* member;
};

constexpr Detail kDetails[] = {
    {"Process", "pid"},
    {"Running since", "since"},
    {"Options", "options"},
};

Table InfoTable(const Json::Value& info) {
    if (!info.isObject()) {
        throw Failure(ExitStatus::kFailed, "GetInfo failed: the answer describes no service");
    }
    const std::vector<std::string> labels = FieldLabels();
    const std::vector<std::string> words = FieldWords(info);
    Table table;
    for (std::size_t field = 0; field < labels.size(); ++field) {
        table.AddRow({labels[field], words[field]});
        table.Paint(1, field == kStatusField ? StatusColour(info) : Colour::kNone);
    }
    for (const Detail& detail : kDetails) {
        if (info.isMember(detail.member)) {
            table.AddRow({detail.label, LeafText(info[detail.member])});
        }
    }
    return table;
}

void Status(Session& session, const std::string& service) {
    Json::Value params;
    params["service"] = ResolveService(session.Host(), service);
    const Json::Value info = session.Host().Call("GetInfo", params);
    session.Print(info, InfoTable(info));
}

}  // namespace

void AddStatus(Command program, Session& session) {
    Command command = program.Add("status", "Show one service");
    const auto service = std::make_shared<std::string>();
    command.Argument("SERVICE", *service, "Number or short name of the service");
    command.Run([&session, service] { Status(session, *service); });
}

}  // namespace client
