// camvoractl settings
#include "client/command.h"
#include "client/commands.h"
#include "client/session.h"
#include "client/table.h"

namespace client {
namespace {

void ShowSettings(const Session& session) {
    Json::Value data(Json::objectValue);
    data["file"] = SettingsFile();
    Table table({"Setting", "Value", "From"});
    for (const SettingKind& kind : kSettingKinds) {
        const Setting& setting = session.Settings().Find(kind.name);
        Json::Value row;
        row["name"] = kind.name;
        row["value"] = setting.value;
        row["from"] = setting.place;
        data["settings"].append(row);
        table.AddRow({kind.name, setting.value, setting.place});
    }
    session.Print(data, table);
    session.Say(SettingsFile().empty() ? "There is no home folder with a settings file"
                                       : "The settings file is " + SettingsFile());
}

}  // namespace

void AddSettings(Command program, Session& session) {
    Command command = program.Add("settings", "Show the settings, and where they come from");
    command.Explain(
        "Those are the options for all commands, which can also be set in the environment and in a file.");
    command.Run([&session] { ShowSettings(session); });
}

}  // namespace client
