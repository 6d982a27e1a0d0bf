#include "client/packagecheck.h"

#include "client/appliancefacts.h"
#include "client/packagescan.h"
#include "client/plainfile.h"

#include <filesystem>

namespace client {

PackageCheck CheckPackage(const std::string& path, const std::string& folder) {
    const PlainFile file(path);
    const PackageScan scan = ScanPackage(file, ReadScanLimits(folder));
    return {JudgePackage(std::filesystem::path(path).filename(), file.SizeBytes(), scan,
                         ReadApplianceFacts(folder)),
            IdentityOf(scan)};
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

Failure RuleFailure(const std::string& path, const std::vector<Verdict>& verdicts, bool isForPrograms) {
    Failure failure(ExitStatus::kRefused, path + " does not keep the rules: " + BrokenRules(verdicts));
    if (isForPrograms) {
        failure.data = VerdictDocument(verdicts);
    }
    return failure;
}

}  // namespace client
