// camvoractl check FILE
#include "client/appliancefacts.h"
#include "client/command.h"
#include "client/commands.h"
#include "client/failure.h"
#include "client/packagerules.h"
#include "client/packagescan.h"
#include "client/plainfile.h"
#include "client/session.h"
#include "client/table.h"

#include <filesystem>
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
    }
    return table;
}

Json::Value VerdictDocument(const std::vector<Verdict>& verdicts) {
    Json::Value document;
    for (const Verdict& verdict : verdicts) {
        Json::Value row;
        row["rule"] = verdict.rule;
        row["kept"] =
            verdict.ruling == Ruling::kNotChecked ? Json::Value() : verdict.ruling == Ruling::kHolds;
        row["seen"] = verdict.seen;
        row["wanted"] = verdict.wanted;
        document["rules"].append(row);
    }
    return document;
}

std::vector<Verdict> Judge(const std::string& path, const std::string& folder) {
    const PlainFile file(path);
    const PackageScan scan = ScanPackage(file, ReadScanLimits(folder));
    return JudgePackage(std::filesystem::path(path).filename(), file.SizeBytes(), scan,
                        ReadApplianceFacts(folder));
}

// A program gets one document: the verdicts of a package that is refused are part of the failure.
Failure Refusal(const std::string& path, const std::string& broken, const Json::Value& data) {
    Failure failure(ExitStatus::kRefused, path + " does not keep the rules: " + broken);
    failure.data = data;
    return failure;
}

void Check(const Session& session, const std::string& path) {
    const std::vector<Verdict> verdicts = Judge(path, session.Folder());
    const Json::Value document = VerdictDocument(verdicts);
    const std::string broken = BrokenRules(verdicts);
    const bool isInFailure = session.IsForPrograms() && !broken.empty();
    if (!isInFailure) {
        session.Print(document, VerdictTable(verdicts));
    }
    if (!broken.empty()) {
        throw Refusal(path, broken, isInFailure ? document : Json::Value());
    }
}

}  // namespace

void AddCheck(Command program, Session& session) {
    Command command = program.Add("check", "Tell whether the appliance would take a package file");
    const auto path = std::make_shared<std::string>();
    command.Argument("FILE", *path, "Package file");
    command.Run([&session, path] { Check(session, *path); });
}

}  // namespace client
