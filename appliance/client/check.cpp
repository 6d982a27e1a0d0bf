// camvoractl check FILE
#include "client/command.h"
#include "client/commands.h"
#include "client/packagecheck.h"
#include "client/session.h"
#include "client/table.h"

#include <memory>

namespace client {
namespace {

const char* WordFor(Ruling ruling) {
    switch (ruling) {
        case Ruling::kHolds:
            return "yes";
        case Ruling::kFails:
            return "no";
        default:
            return "not checked";
    }
}

Table VerdictTable(const std::vector<Verdict>& verdicts) {
    Table table({"Rule", "Kept", "Seen", "Wanted"});
    for (const Verdict& verdict : verdicts) {
        table.AddRow({verdict.rule, WordFor(verdict.ruling), verdict.seen, verdict.wanted});
        table.Paint(1, verdict.ruling == Ruling::kFails ? Colour::kRed : Colour::kNone);
    }
    return table;
}

// A program gets one document: the verdicts of a package that is refused are part of the failure.
void Check(const Session& session, const std::string& path) {
    const std::vector<Verdict> verdicts = CheckPackage(path, session.Folder()).verdicts;
    const bool isBroken = !BrokenRules(verdicts).empty();
    if (!isBroken || !session.IsForPrograms()) {
        session.Print(VerdictDocument(verdicts), VerdictTable(verdicts));
    }
    if (isBroken) {
        throw RuleFailure(path, verdicts, session.IsForPrograms());
    }
}

}  // namespace

void AddCheck(Command program, Session& session) {
    Command command = program.Add("check", "Tell whether a package file would be accepted");
    command.Explain(
        "No appliance needs to run. The package is also compared with the version and platform that the "
        "appliance's folder names; without a folder, the rules that need those are not checked.");
    const auto path = std::make_shared<std::string>();
    command.Argument("FILE", *path, "Package file");
    command.Run([&session, path] { Check(session, *path); });
}

}  // namespace client
