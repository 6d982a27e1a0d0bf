#include "client/commandline.h"

#include "client/command.h"
#include "client/commands.h"
#include "client/exitstatus.h"
#include "client/failure.h"
#include "client/globalsettings.h"
#include "client/helppage.h"
#include "client/jsontext.h"
#include "client/output.h"
#include "client/session.h"

#include <unistd.h>
#include <CLI/CLI.hpp>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace client {
namespace {

struct CommandGroup {
    const char* title;
    std::vector<void (*)(Command, Session&)> commands;
};

// In the order of the help.
const std::vector<CommandGroup>& CommandGroups() {
    static const std::vector<CommandGroup> groups = {
        {"Services", {AddList, AddStatus, AddControl, AddApps}},
        {"Releases", {AddUpdates, AddUpdate, AddDownload, AddAutoUpdate, AddRestore}},
        {"Package files", {AddInstall, AddUpload, AddCheck, AddPkg, AddFeed}},
        {"Events and history", {AddEvents, AddOperations, AddWait, AddLog}},
        {"The appliance", {AddConsole, AddPair, AddMethods, AddCall}},
        {"This program", {AddSettings, AddCompletion, AddMan}},
        {"", {AddCompletionWords}},
    };
    return groups;
}

constexpr char kAbout[] = "Manages the add-on services of a Camvora appliance.";

CLI::Validator ValidatorOf(const SettingKind& kind) {
    return CLI::Validator([&kind](const std::string& value) { return kind.problemOf(value); }, "");
}

void AddSetting(CLI::App& program, GlobalSettings& settings, const SettingKind& kind) {
    const std::string name = std::string("--") + kind.name;
    if (kind.IsFlag()) {
        program.add_flag_function(
            name, [&](std::int64_t count) { settings.Set(kind, count > 0 ? "yes" : "no"); }, kind.help);
    } else {
        program
            .add_option_function<std::string>(
                name, [&](const std::string& value) { settings.Set(kind, value); }, kind.help)
            ->check(ValidatorOf(kind))
            ->option_text(kind.valueText)
            ->take_last();
    }
}

void AddOptions(CLI::App& program, GlobalSettings& settings) {
    for (const SettingKind& kind : kSettingKinds) {
        AddSetting(program, settings, kind);
    }
    program.set_version_flag("--version", "camvoractl " CAMVORA_VERSION, "Print the version and exit");
    program.set_help_flag("-h,--help", "Print this, or the help of a command, and exit");
}

void AddCommands(CLI::App& program, Session& session) {
    for (const CommandGroup& group : CommandGroups()) {
        std::size_t known = program.get_subcommands({}).size();
        for (const auto add : group.commands) {
            add(Command(program), session);
        }
        const std::vector<CLI::App*> commands = program.get_subcommands({});
        for (; known < commands.size(); ++known) {
            commands[known]->group(group.title);
        }
    }
}

// The command's name with those above it.
std::string PathOf(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    const bool isTop = parent->get_parent() == nullptr;
    return isTop ? command.get_name() : parent->get_name() + " " + command.get_name();
}

std::string HelpOf(CLI::App& app) {
    const CommandDescription description = Command(app).Description();
    return app.get_parent() == nullptr ? ProgramHelp(description) : CommandHelp(description, PathOf(app));
}

int Report(const Failure& failure, bool json) {
    const bool isReported = json && WriteWhole(STDOUT_FILENO, ToJson(FailureDocument(failure)) + "\n") == 0;
    if (!isReported) {
        (void)WriteWhole(STDERR_FILENO, FailureText(failure));  // there is nowhere else to say it
    }
    return static_cast<int>(failure.status);
}

// The library only says that a command is missing when what was typed before it, or instead, is unknown.
std::string WhatIsWrong(const CLI::App& program, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = program.remaining();
    if (!program.get_subcommands().empty() || unknown.empty()) {
        return error.what();
    }
    const char* kind = unknown.front().rfind('-', 0) == 0 ? "option" : "command";
    return std::string("There is no ") + kind + " \"" + unknown.front() + "\"";
}

// The one that was named last.
CLI::App& ChosenCommand(CLI::App& program) {
    CLI::App* chosen = &program;
    while (!chosen->get_subcommands().empty()) {
        chosen = chosen->get_subcommands().front();
    }
    return *chosen;
}

// Help and version leave the parser as exceptions, too.
int PrintInformation(CLI::App& program, const CLI::Success& wish, bool isForPrograms) {
    const bool isHelp = dynamic_cast<const CLI::CallForHelp*>(&wish) != nullptr;
    const std::string text = isHelp ? HelpOf(ChosenCommand(program)) : std::string(wish.what()) + "\n";
    const int error = WriteWhole(STDOUT_FILENO, text);
    return error == 0 ? 0 : Report(Failure(ExitStatus::kFailed, strerror(error)), isForPrograms);
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
    GlobalSettings settings;
    Session session(settings);
    CLI::App program(kAbout, "camvoractl");
    program.require_subcommand(1);
    program.fallthrough();  // global options may stand behind the command
    program.parse_complete_callback([&session] { session.TakeSettings(); });
    AddOptions(program, settings);
    AddCommands(program, session);
    try {
        program.parse(argc, argv);
        return static_cast<int>(session.EndStatus());
    } catch (const CLI::Success& wish) {
        return PrintInformation(program, wish, settings.IsOn("json"));
    } catch (const CLI::ParseError& error) {
        const Failure failure(ExitStatus::kUsage, WhatIsWrong(program, error) + ". See camvoractl --help");
        const bool isForPrograms =
            program.count("--json") > 0 || settings.IsOn("json");  // it may not be set yet
        return Report(failure, isForPrograms);
    } catch (const Failure& failure) {
        return Report(failure, settings.IsOn("json"));
    } catch (const std::exception& error) {
        return Report(Failure(ExitStatus::kFailed, error.what()), settings.IsOn("json"));
    }
}

}  // namespace client
