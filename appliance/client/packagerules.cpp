#include "client/packagerules.h"

#include "client/keyvalue.h"
#include "client/versionorder.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace client {
namespace {

constexpr std::string_view kExtension = "spk";

using Value = std::optional<std::string>;

struct AddOn {
    const char* package;
    const char* service;  // its short name
    const char* conf;     // its place in the tree's archive
    bool hasTopFolder;
    Value ApplianceFacts::*minVersion;
};

constexpr AddOn kAddOns[] = {
    {kDevicePackPackage, "device_pack", "device_pack/conf", true, &ApplianceFacts::devicePackMinVersion},
    {kLocalDisplayPackage, "local_display", "conf", false, &ApplianceFacts::localDisplayMinVersion},
};

// What the rules look at. Values that are not there are nothing.
struct Package {
    const std::string& fileName;
    std::uint64_t sizeBytes;
    const PackageScan& scan;
    const std::optional<ApplianceFacts>& facts;
    Value name;
    Value arch;
    const AddOn* addOn;  // null when the name is of none
    Value conf;          // the whole text
};

Ruling RulingOf(bool holds) {
    return holds ? Ruling::kHolds : Ruling::kFails;
}

std::string Quoted(const Value& value) {
    return value ? "\"" + *value + "\"" : "";
}

std::string Plural(std::uint64_t count, const std::string& what) {
    return std::to_string(count) + " " + what;
}

Value ConfValue(const Package& package, const char* key) {
    return package.conf ? ValueOf(*package.conf, key) : std::nullopt;
}

Verdict JudgeExtension(const Package& package) {
    const std::string& name = package.fileName;
    return {"extension", RulingOf(name.substr(name.rfind('.') + 1) == kExtension), name,
            "a name that ends in .spk"};
}

Verdict JudgeArchive(const Package& package) {
    const std::string& damage = package.scan.damage;
    return {"archive", RulingOf(damage.empty()), damage.empty() ? "whole" : damage,
            "a whole tar archive, and in it another one"};
}

Verdict JudgeSizes(const Package& package) {
    const PackageScan& scan = package.scan;
    const std::string seen = Plural(scan.entries, "files and folders, ") + Plural(scan.sizeBytes, "bytes");
    return {"sizes", RulingOf(scan.excess.empty()), scan.excess.empty() ? seen : scan.excess,
            "at most " + Plural(scan.limits.entries, "files and folders, ") +
                Plural(scan.limits.sizeBytes >> 20U, "MiB in each of the two archives")};
}

Verdict JudgeMembers(const Package& package) {
    const PackageScan& scan = package.scan;
    return {"members", RulingOf(scan.infoCount == 1 && scan.treeArchiveCount == 1),
            Plural(scan.infoCount, "INFO, ") + Plural(scan.treeArchiveCount, "package.tgz"),
            "one plain file INFO, one package.tgz"};
}

Verdict JudgeNames(const Package& package) {
    return {"names", RulingOf(package.scan.strayName.empty()), package.scan.strayName,
            "no name that is absolute or has \"..\" in it"};
}

Verdict JudgeLinks(const Package& package) {
    return {"links and special files", RulingOf(package.scan.badLink.empty()), package.scan.badLink,
            "only links within the tree, none for conf and scripts"};
}

Verdict JudgeInfo(const Package& package) {
    return {"INFO", RulingOf(package.addOn != nullptr && package.arch), Quoted(package.name),
            "an add-on's name as \"package\", and \"arch\""};
}

Verdict JudgeTree(const Package& package) {
    if (package.addOn == nullptr) {
        return {"tree", Ruling::kNotChecked, "", ""};
    }
    const std::string& stray = package.scan.besidesDevicePack;
    const bool isStray = package.addOn->hasTopFolder && !stray.empty();
    return {"tree", RulingOf(!isStray && package.conf),
            isStray        ? stray
            : package.conf ? "conf"
                           : "",
            std::string("a plain file ") + package.addOn->conf +
                (package.addOn->hasTopFolder ? ", and nothing besides device_pack" : "")};
}

Verdict JudgeConf(const Package& package) {
    const Value version = ConfValue(package, "version");
    const Value maintainer = ConfValue(package, "maintainer");
    if (!package.conf) {
        return {"conf", Ruling::kNotChecked, "", ""};
    }
    return {"conf", RulingOf(version && maintainer && ConfValue(package, "cv_min_ver")),
            Quoted(version) + (version && maintainer ? " of " : "") + Quoted(maintainer),
            "\"version\", \"maintainer\" and \"cv_min_ver\""};
}

bool HasElement(const std::string& list, const std::string& element) {
    std::istringstream words(list);
    for (std::string word; std::getline(words, word, ' ');) {
        if (word == element && !word.empty()) {
            return true;
        }
    }
    return false;
}

Verdict JudgePlatform(const Package& package) {
    if (!package.facts || !package.arch) {
        return {"platform", Ruling::kNotChecked, Quoted(package.arch), ""};
    }
    const ApplianceFacts& facts = *package.facts;
    const bool holds =
        facts.arch && (*package.arch == *facts.arch || HasElement(*package.arch, facts.platform));
    return {
        "platform", RulingOf(holds), Quoted(package.arch),
        Quoted(facts.arch) + (facts.platform.empty() ? "" : ", or \"" + facts.platform + "\" in the list")};
}

// Both version rules: `version` has to be `minimum` at least. Without the appliance, or without what the
// package says of it, nothing is known.
Verdict JudgeVersion(const char* rule, bool isKnown, const Value& version, const Value& minimum) {
    if (!isKnown) {
        return {rule, Ruling::kNotChecked, "", ""};
    }
    return {rule, RulingOf(version && minimum && IsAtLeast(*version, *minimum)), Quoted(version),
            minimum ? Quoted(minimum) + " or newer" : "a value on the appliance"};
}

Verdict JudgeMainVersion(const Package& package) {
    const Value minimum = ConfValue(package, "cv_min_ver");
    return JudgeVersion("version of Camvora", package.facts && minimum,
                        package.facts ? package.facts->version : std::nullopt, minimum);
}

Verdict JudgeAddOnVersion(const Package& package) {
    const Value version = ConfValue(package, "version");
    const bool isKnown = package.facts && package.addOn != nullptr && version;
    return JudgeVersion("version of the add-on", isKnown, version,
                        isKnown ? (*package.facts).*(package.addOn->minVersion) : std::nullopt);
}

// The uploaded file is there until it has been unpacked, and the tree's archive besides the tree.
Verdict JudgeFreeSpace(const Package& package) {
    const std::uint64_t neededBytes = package.sizeBytes + package.scan.sizeBytes;
    const bool isKnown = package.facts && package.facts->freeBytes;
    const std::string wanted = Plural(neededBytes, "bytes");
    if (!isKnown) {
        return {"free space", Ruling::kNotChecked, "", wanted};
    }
    return {"free space", RulingOf(*package.facts->freeBytes >= neededBytes),
            Plural(*package.facts->freeBytes, "bytes"), wanted};
}

constexpr Verdict (*kRules[])(const Package&) = {
    JudgeExtension,   JudgeArchive,      JudgeSizes,     JudgeMembers, JudgeNames,
    JudgeLinks,       JudgeInfo,         JudgeTree,      JudgeConf,    JudgePlatform,
    JudgeMainVersion, JudgeAddOnVersion, JudgeFreeSpace,
};

const AddOn* FindAddOn(const Value& name) {
    const auto* found = std::find_if(std::begin(kAddOns), std::end(kAddOns),
                                     [&name](const AddOn& addOn) { return name == addOn.package; });
    return found == std::end(kAddOns) ? nullptr : found;
}

Value FindConf(const PackageScan& scan, const AddOn* addOn) {
    const auto conf = addOn == nullptr ? scan.confs.end() : scan.confs.find(addOn->conf);
    return conf == scan.confs.end() ? std::nullopt : Value(conf->second);
}

}  // namespace

std::optional<PackageIdentity> IdentityOf(const PackageScan& scan) {
    const AddOn* addOn = FindAddOn(ValueOf(scan.info, "package"));
    const std::string conf = FindConf(scan, addOn).value_or("");
    const Value version = ValueOf(conf, "version");
    const Value maintainer = ValueOf(conf, "maintainer");
    if (addOn == nullptr || !version || !maintainer) {
        return std::nullopt;
    }
    return PackageIdentity{addOn->service, *version, *maintainer, ValueOf(conf, "cv_min_ver").value_or("")};
}

std::vector<Verdict> JudgePackage(const std::string& fileName, std::uint64_t sizeBytes,
                                  const PackageScan& scan, const std::optional<ApplianceFacts>& facts) {
    const Value name = ValueOf(scan.info, "package");
    const AddOn* addOn = FindAddOn(name);
    const Package package{
        fileName, sizeBytes, scan, facts, name, ValueOf(scan.info, "arch"), addOn, FindConf(scan, addOn)};
    std::vector<Verdict> verdicts;
    for (const auto judge : kRules) {
        verdicts.push_back(judge(package));
    }
    return verdicts;
}

std::string BrokenRules(const std::vector<Verdict>& verdicts) {
    std::string rules;
    for (const Verdict& verdict : verdicts) {
        if (verdict.ruling == Ruling::kFails) {
            rules += (rules.empty() ? "" : ", ") + std::string(verdict.rule);
        }
    }
    return rules;
}

}  // namespace client
