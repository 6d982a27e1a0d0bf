// The rules that a package file has to keep, each judged by itself.
#pragma once

#include "client/appliancefacts.h"
#include "client/packagescan.h"

#include <optional>
#include <string>
#include <vector>

namespace client {

// The two add-ons' names for themselves, in INFO.
inline constexpr char kDevicePackPackage[] = "CamvoraDevicePack";
inline constexpr char kLocalDisplayPackage[] = "CamvoraLocalDisplay";

// What a package says it is.
struct PackageIdentity {
    std::string service;  // short name of the add-on
    std::string version;
    std::string maintainer;
    std::string lowestMainVersion = {};  // empty where it does not matter
};

// Nothing when the package is of no add-on, or its conf does not say all of that.
std::optional<PackageIdentity> IdentityOf(const PackageScan& scan);

enum class Ruling { kHolds, kFails, kNotChecked };

struct Verdict {
    const char* rule;
    Ruling ruling;
    std::string seen;
    std::string wanted;
};

// Judges a package file by all rules, always in the same order.
//   fileName   under which it is to be uploaded, without folders
//   sizeBytes  of the file
//   facts      of the appliance that it is for; without them the rules that need them are not checked
std::vector<Verdict> JudgePackage(const std::string& fileName, std::uint64_t sizeBytes,
                                  const PackageScan& scan, const std::optional<ApplianceFacts>& facts);

// The names of the rules that are not kept, with ", " between.
std::string BrokenRules(const std::vector<Verdict>& verdicts);

}  // namespace client
