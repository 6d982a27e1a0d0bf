// camvoractl completion SHELL, and complete-words, which the scripts of the shells call
#include "client/command.h"
#include "client/commands.h"
#include "client/completionscripts.h"
#include "client/completionwords.h"
#include "client/failure.h"
#include "client/output.h"
#include "client/session.h"
#include "client/terminaltext.h"

#include <unistd.h>

#include <memory>

namespace client {
namespace {

void PrintScript(const Session& session, const std::string& shell) {
    const std::string script = CompletionScript(shell);
    if (script.empty()) {
        throw Failure(ExitStatus::kUsage,
                      "There is no completion for \"" + shell + "\", only for bash and zsh");
    }
    Json::Value data;
    data["shell"] = shell;
    data["script"] = script;
    session.PrintText(data, script);
}

// For a shell, whatever the settings say.
void PrintWords(const Session& session, const CommandDescription& program,
                const std::vector<std::string>& typed) {
    std::string lines;
    for (const CompletionWord& word : CompletionWords(program, typed, session)) {
        lines += Printable(word.word) + "\t" + Printable(word.help) + "\n";
    }
    (void)WriteWhole(STDOUT_FILENO, lines);  // there is nowhere to say it
}

}  // namespace

void AddCompletion(Command program, Session& session) {
    Command command = program.Add("completion", "Print the script for completion in a shell");
    command.Explain(
        "For bash, put it into ~/.local/share/bash-completion/completions/camvoractl; for zsh, into a "
        "folder of $fpath as _camvoractl. The appliance's services, methods and operations are "
        "offered, too.");
    const auto shell = std::make_shared<std::string>();
    command.Argument("SHELL", *shell, "\"bash\" or \"zsh\"");
    command.Run([&session, shell] { PrintScript(session, *shell); });
}

void AddCompletionWords(Command program, Session& session) {
    Command command = program.Add("complete-words", "Print the words that fit at the end of a line");
    const auto typed = std::make_shared<std::vector<std::string>>();
    command.OptionalArguments("WORD", *typed, "What has been typed");
    command.Run([&session, program, typed] { PrintWords(session, program.Description(), *typed); });
}

}  // namespace client
