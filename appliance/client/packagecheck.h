// A package file, judged where it lies.
#pragma once

#include "client/failure.h"
#include "client/packagerules.h"

#include <json/value.h>

#include <optional>
#include <string>
#include <vector>

namespace client {

struct PackageCheck {
    std::vector<Verdict> verdicts;
    std::optional<PackageIdentity> identity;  // there unless a rule is broken
};

// Judges the package file at `path` as the appliance in `folder` would; an empty `folder` is none. Throws
// Failure as PlainFile does.
PackageCheck CheckPackage(const std::string& path, const std::string& folder);

// The verdicts for a program.
Json::Value VerdictDocument(const std::vector<Verdict>& verdicts);

// That some of the rules are not kept, as a failure (kRefused); it has the verdicts where `isForPrograms`.
Failure RuleFailure(const std::string& path, const std::vector<Verdict>& verdicts, bool isForPrograms);

}  // namespace client
