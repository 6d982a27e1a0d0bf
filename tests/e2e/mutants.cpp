#include "e2e/mutants.h"

#include "support/packages.h"
#include "support/tararchive.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <iterator>
#include <utility>

namespace e2e {

namespace {

using Random = std::mt19937;
using Members = std::vector<TarMember>;

constexpr std::size_t kBlobBytes = 3000;
constexpr std::size_t kMostFlips = 4;
constexpr double kLimitS = 10;

struct Mutant {
    std::string package;
    std::string meant;  // where it counts as damaged, the package that it was; else the same
};

std::size_t Below(Random& random, std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
}

bool IsHeads(Random& random) {
    return Below(random, 2) == 0;
}

std::string Blob(Random& random) {
    std::string blob(kBlobBytes, '\0');
    std::generate(blob.begin(), blob.end(), [&random] { return static_cast<char>(Below(random, 256)); });
    return blob;
}

Members GoodTree(const AddOn& addOn, Random& random, const std::string& conf = kGoodConf) {
    const std::string top = *addOn.folder == '\0' ? std::string(addOn.name) + "/" : "";
    return {{top + "lib", "", '5', "", 0755},
            {top + "conf", conf},
            {top + "lib/a.so.1", Blob(random)},
            {top + "lib/a.so", "", '2', "a.so.1"},
            {top + "script/preinst", "#!/bin/sh\n", '0', "", 0755}};
}

Members GoodPackage(const AddOn& addOn, const std::string& tree) {
    return {{"INFO", addOn.info}, {"LICENSE", "none"}, {"package.tgz", tree}};
}

std::string Pack(const AddOn& addOn, const std::string& tree) {
    return TarOf(GoodPackage(addOn, tree));
}

std::string GoodBytes(const AddOn& addOn, Random& random) {
    return Pack(addOn, Gzip(TarOf(GoodTree(addOn, random))));
}

std::string Flipped(std::string bytes, Random& random) {
    for (std::size_t flips = Below(random, kMostFlips) + 1; flips > 0; --flips) {
        bytes[Below(random, bytes.size())] ^= static_cast<char>(1U << Below(random, 8));
    }
    return bytes;
}

Mutant Unspoiled(const std::string& package) {
    return {package, package};
}

Mutant FlipPackage(const AddOn& addOn, Random& random) {
    return Unspoiled(Flipped(GoodBytes(addOn, random), random));
}

Mutant CutPackage(const AddOn& addOn, Random& random) {
    const std::string whole = GoodBytes(addOn, random);
    return {whole.substr(0, Below(random, whole.size())), whole};
}

// A flipped byte shows only where a checksum covers it.
Mutant FlipTree(const AddOn& addOn, Random& random) {
    const std::string tree = TarOf(GoodTree(addOn, random));
    if (IsHeads(random)) {
        return Unspoiled(Pack(addOn, Flipped(tree, random)));
    }
    return {Pack(addOn, Flipped(Gzip(tree), random)), Pack(addOn, Gzip(tree))};
}

Mutant CutTree(const AddOn& addOn, Random& random) {
    const std::string plain = TarOf(GoodTree(addOn, random));
    const std::string tree = IsHeads(random) ? plain : Gzip(plain);
    return {Pack(addOn, tree.substr(0, Below(random, tree.size()))), Pack(addOn, tree)};
}

void SwapSome(Members& members, Random& random) {
    TarMember& one = members[Below(random, members.size())];
    TarMember& other = members[Below(random, members.size())];
    switch (Below(random, 4)) {
        case 0:
            std::shuffle(members.begin(), members.end(), random);
            break;
        case 1:
            std::swap(one.name, other.name);
            break;
        case 2:
            one = TarMember(other);
            break;
        default:
            members.push_back(TarMember(one));
    }
}

Mutant SwapMembers(const AddOn& addOn, Random& random) {
    Members tree = GoodTree(addOn, random);
    if (IsHeads(random)) {
        SwapSome(tree, random);
    }
    Members package = GoodPackage(addOn, Gzip(TarOf(tree)));
    if (IsHeads(random)) {
        SwapSome(package, random);
    }
    return Unspoiled(TarOf(package));
}

std::string RandomLine(Random& random) {
    static const std::array<std::string, 7> kKeys = {
        "package", "arch", "version", "maintainer", "cv_min_ver", "", std::string("\0x", 2)};
    static const std::array<std::string, 12> kValues = {"",
                                                        "9.9-1",
                                                        "-",
                                                        std::string(255, '9'),
                                                        std::string(256, '9'),
                                                        std::string(70'000, 'x'),
                                                        std::string("9\0x", 3),
                                                        "\xff\xc3\x1b[2J\r",
                                                        "%n%s",
                                                        "../../etc",
                                                        "CamvoraDevicePack",
                                                        "plat0 plat1"};
    static const std::array<std::array<const char*, 3>, 5> kForms = {
        {{"", "=\"", "\"\n"}, {"", "=", "\n"}, {" ", " = ", " \r\n"}, {"", "=\"", "\n"}, {"#", "=", ""}}};
    const auto& [before, between, after] = kForms[Below(random, kForms.size())];
    return before + kKeys[Below(random, kKeys.size())] + between + kValues[Below(random, kValues.size())] +
           after;
}

// Of several lines with the same key the first one holds.
std::string RandomLinesAround(const std::string& good, Random& random) {
    std::string text = good;
    for (std::size_t lines = Below(random, 4); lines > 0; --lines) {
        const std::string line = RandomLine(random);
        text = IsHeads(random) ? line + text : text + line;
    }
    return text;
}

Mutant ChangeValues(const AddOn& addOn, Random& random) {
    Members package =
        GoodPackage(addOn, Gzip(TarOf(GoodTree(addOn, random, RandomLinesAround(kGoodConf, random)))));
    package[0].content = RandomLinesAround(addOn.info, random);
    return Unspoiled(TarOf(package));
}

Mutant MakeMutant(const AddOn& addOn, Random& random) {
    constexpr std::array kKinds = {FlipPackage, CutPackage, FlipTree, CutTree, SwapMembers, ChangeValues};
    return kKinds[Below(random, kKinds.size())](addOn, random);
}

void Judge(const Appliance& appliance, const AddOn& addOn, const Mutant& mutant, const std::string& name,
           HttpCalls& calls, MutantFigures& figures) {
    const auto begin = std::chrono::steady_clock::now();
    const Answer answer = Inspect(appliance, calls, addOn, mutant.package);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    const std::string fault = FaultOf(appliance, answer, addOn, mutant.meant);
    if (!fault.empty() || taken.count() > kLimitS) {
        figures.faults.push_back(name + " " + fault + " after " + std::to_string(taken.count()) + " s");
    }
    figures.taken += answer.Succeeded() ? 1U : 0U;
}

MutantFigures InspectFor(const AddOn& addOn, const Appliance& appliance, unsigned seed, unsigned count) {
    MutantFigures figures;
    HttpCalls calls = appliance.Owner();
    for (unsigned number = 0; number < count; ++number) {
        std::seed_seq seeds{seed, static_cast<unsigned>(addOn.service), number};
        Random random(seeds);
        const std::string name = std::string(addOn.name) + " " + std::to_string(number);
        Judge(appliance, addOn, MakeMutant(addOn, random), name, calls, figures);
    }
    return figures;
}

}  // namespace

MutantFigures InspectMutants(const Appliance& appliance, unsigned seed, unsigned count) {
    const Listing before = ListingOutside(appliance);
    auto displays =
        std::async(std::launch::async, InspectFor, kLocalDisplay, std::cref(appliance), seed, count / 2);
    MutantFigures figures = InspectFor(kDevicePack, appliance, seed, count - count / 2);
    const MutantFigures others = displays.get();
    figures.taken += others.taken;
    figures.faults.insert(figures.faults.end(), others.faults.begin(), others.faults.end());
    for (const std::string& path : ChangedPaths(before, ListingOutside(appliance))) {
        figures.faults.push_back("outside of the work directories: " + path);
    }
    return figures;
}

}  // namespace e2e
