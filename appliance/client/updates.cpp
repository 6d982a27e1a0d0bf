// camvoractl updates [--exit-code]
#include "client/command.h"
#include "client/commands.h"
#include "client/jsontext.h"
#include "client/plainwords.h"
#include "client/progress.h"
#include "client/releases.h"
#include "client/services.h"
#include "client/session.h"
#include "client/table.h"
#include "client/updatecheck.h"

#include <memory>
#include <vector>

namespace client {
namespace {

struct Update {
    Service service;
    Json::Value info;  // as "List" has it
    UpdateState state;
    Json::Value release;   // newer than what is installed; null for none
    Json::Value download;  // null for none
};

std::vector<Update> LookForUpdates(Session& session) {
    const Appliance& host = session.Host();
    const Json::Value listData = host.Call("List", Json::objectValue);
    Progress progress(session.ShowsProgress());
    std::vector<Update> updates;
    for (const Service& service : ServicesWithPackagesIn(listData)) {
        progress.Step("Checking for a release of " + service.name);
        const UpdateState state = CheckForUpdate(session, service);
        updates.push_back(
            {service, InfoOf(listData, service), state, ReleaseOf(host, service), DownloadOf(host, service)});
    }
    return updates;
}

std::string SizeOf(const Json::Value& release) {
    const Json::Value size = Member(release, "size");
    return size.isUInt64() ? SizeWords(size.asUInt64()) : "";
}

std::string WordsFor(const Update& update) {
    const std::string problem = LeafText(Member(update.download, "problem"));
    const bool isFailed = update.state == UpdateState::kDownloadFailed && !problem.empty();
    return StateWords(update.state) + (isFailed ? ": " + problem : "");
}

Colour ColourFor(UpdateState state) {
    switch (state) {
        case UpdateState::kDownloading:
        case UpdateState::kUpdating:
            return Colour::kYellow;
        case UpdateState::kDownloadFailed:
        case UpdateState::kNotAnswered:
            return Colour::kRed;
        default:
            return Colour::kNone;
    }
}

Table UpdateTable(const std::vector<Update>& updates) {
    constexpr std::size_t kStateColumn = 5;
    Table table({"Add-on", "Installed", "Newer", "Date", "Size", "State", "Automatic update", "Notes"});
    for (const Update& update : updates) {
        const Json::Value& newer = update.release.isNull() ? update.download : update.release;
        table.AddRow({update.service.name, LeafText(Member(update.info, "version")),
                      LeafText(Member(newer, "version")), LeafText(Member(newer, "date")), SizeOf(newer),
                      WordsFor(update), OnOff(Member(update.info, "blAutoUpdate")),
                      FirstLine(LeafText(Member(newer, "notes")))});
        table.Paint(kStateColumn, ColourFor(update.state));
    }
    return table;
}

Json::Value UpdateDocument(const std::vector<Update>& updates) {
    Json::Value document;
    document["updates"] = Json::Value(Json::arrayValue);
    for (const Update& update : updates) {
        Json::Value row;
        row["service"] = update.service.number;
        row["shortName"] = update.service.shortName;
        row["installedVersion"] = Member(update.info, "version");
        row["blAutoUpdate"] = Member(update.info, "blAutoUpdate");
        row["status"] = static_cast<int>(update.state);
        row["release"] = update.release;
        row["download"] = update.download;
        document["updates"].append(row);
    }
    return document;
}

ExitStatus StatusFor(const std::vector<Update>& updates) {
    ExitStatus status = ExitStatus::kDone;
    for (const Update& update : updates) {
        if (IsReleaseThere(update.state)) {
            return ExitStatus::kUpdatesThere;
        }
        if (!IsKnown(update.state)) {
            status = ExitStatus::kFailed;
        }
    }
    return status;
}

void Run(Session& session, bool hasExitCode) {
    const std::vector<Update> updates = LookForUpdates(session);
    session.Print(UpdateDocument(updates), UpdateTable(updates));
    if (hasExitCode) {
        session.EndWith(StatusFor(updates));
    }
}

}  // namespace

void AddUpdates(Command program, Session& session) {
    Command command = program.Add("updates", "Show which add-ons have newer releases");
    command.Explain("The appliance asks its feed, which takes a moment.");
    const auto hasExitCode = std::make_shared<bool>(false);
    command.Flag("--exit-code", *hasExitCode,
                 "Exit with 10 when there are any, with 1 when that is not known");
    command.Run([&session, hasExitCode] { Run(session, *hasExitCode); });
}

}  // namespace client
