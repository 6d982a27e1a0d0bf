#include "client/commandline.h"

#include "client/command.h"
#include "client/commands.h"
#include "client/examples.h"
#include "client/exitstatus.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/output.h"
#include "client/session.h"

#include <unistd.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <sstream>
#include <utility>
#include <vector>

namespace client {
namespace {

// In the order of the help.
constexpr void (*kCommands[])(Command, Session&) = {
    AddList,   AddStatus,     AddControl, AddInstall, AddUpload, AddUpdates, AddDownload,
    AddUpdate, AddAutoUpdate, AddRestore, AddCheck,   AddPkg,    AddFeed,    AddEvents,
    AddLog,    AddApps,       AddMethods, AddCall,    AddPair,
};

constexpr char kCommandFooter[] = "Options for all commands, and exit statuses: camvoractl --help\n";

constexpr int kLongestTimeoutSeconds = 24 * 60 * 60;

// The name becomes a part of the address.
CLI::Validator IsServerName() {
    const auto problemWith = [](const std::string& name) -> std::string {
        const bool isName = std::all_of(name.begin(), name.end(), [](unsigned char c) {
            return std::isalnum(c) != 0 || c == '.' || c == '_' || c == '-';
        });
        return isName && !name.empty() ? "" : "\"" + name + "\" cannot be the name of a server";
    };
    return CLI::Validator(problemWith, "");
}

void AddOptions(CLI::App& program, GlobalOptions& options) {
    program.set_version_flag("--version", "camvoractl " CAMVORA_VERSION, "Print the version and exit");
    program.add_flag("--json", options.json, "Write JSON, errors too, to standard output");
    program
        .add_option("--timeout", options.timeoutSeconds,
                    "Longest time to wait for a reply or an outcome, in seconds")
        ->check(CLI::Range(1, kLongestTimeoutSeconds))
        ->option_text("SECONDS [60]");
    program
        .add_option("--dir", options.location.dir,
                    "The appliance's folder. Default: the environment's CAMVORA_DIR, else the folder of this "
                    "program")
        ->envname("CAMVORA_DIR")
        ->option_text("DIR");
    program.add_option("--url", options.location.url, "Address of the appliance, instead of the folder's")
        ->option_text("http://HOST:PORT");
    program
        .add_option("--token-file", options.location.tokenFile, "File of the token, instead of the folder's")
        ->option_text("FILE");
    program
        .add_option("--server", options.server,
                    "Call methods on this recording server, which is paired with the appliance")
        ->check(IsServerName())
        ->option_text("NAME");
}

void AddExamples(CLI::App& program) {
    std::vector<std::pair<CLI::App*, std::string>> parents = {{&program, ""}};
    while (!parents.empty()) {
        const auto [parent, path] = parents.back();
        parents.pop_back();
        for (CLI::App* const command : parent->get_subcommands({})) {
            const std::string name = path + command->get_name();
            command->footer(ExamplesOf(name) + kCommandFooter);
            parents.emplace_back(command, name + " ");
        }
    }
}

void AddCommands(CLI::App& program, Session& session) {
    for (const auto add : kCommands) {
        add(Command(program), session);
    }
    AddExamples(program);
    program.footer(ProgramExamples() + ExitStatusHelp());
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

// Help and version leave the parser as exceptions, too.
int PrintInformation(const CLI::App& program, const CLI::Success& wish, const GlobalOptions& options) {
    std::ostringstream text;
    program.exit(wish, text, text);
    const int error = WriteWhole(STDOUT_FILENO, text.str());
    return error == 0 ? 0 : Report(Failure(ExitStatus::kFailed, strerror(error)), options.json);
}

}  // namespace

int RunCommandLine(int argc, const char* const* argv) {
    GlobalOptions options;
    Session session(options);
    CLI::App program("Manages the add-on services of a Camvora appliance.", "camvoractl");
    program.require_subcommand(1);
    program.fallthrough();  // global options may stand behind the command
    AddOptions(program, options);
    AddCommands(program, session);
    try {
        program.parse(argc, argv);
        return static_cast<int>(session.EndStatus());
    } catch (const CLI::Success& wish) {
        return PrintInformation(program, wish, options);
    } catch (const CLI::ParseError& error) {
        const Failure failure(ExitStatus::kUsage, WhatIsWrong(program, error) + ". See camvoractl --help");
        return Report(failure, program.count("--json") > 0);  // the option's variable may not be set yet
    } catch (const Failure& failure) {
        return Report(failure, options.json);
    } catch (const std::exception& error) {
        return Report(Failure(ExitStatus::kFailed, error.what()), options.json);
    }
}

}  // namespace client
