// Updates and restores killed at each system call that changes the file system, and inspections and restores
// during updates:
//
//   long_updates [--sample] [--inspections N] [--restores N]
//
// Prints for each program and call what was in the place of the add-on afterwards, and each fault.
#include "e2e/updates.h"
#include "e2e/restorekill.h"
#include "e2e/restores.h"
#include "e2e/updatekill.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

constexpr unsigned kSeed = 1;

void Print(const FileCall& call, const e2e::TrialCounts& counts) {
    std::printf("%-20s %-16s %6u %6u %6u %6u %8u\n", call.program.c_str(), call.name.c_str(), counts.trials,
                counts.old, counts.fresh, counts.none, counts.mixture);
}

void Print(const e2e::KillFigures& figures) {
    std::printf("%-20s %-16s %6s %6s %6s %6s %8s\n", "program", "system call", "trials", "old", "new", "none",
                "mixture");
    for (const auto& [call, counts] : figures.byCall) {
        Print(call, counts);
    }
    Print({"all", ""}, figures.all);
    std::printf("longest next update %.2f s, faults %zu\n", figures.longestS, figures.faults.size());
    for (const std::string& fault : figures.faults) {
        std::printf("%s\n", fault.c_str());
    }
}

using Sweeper = bool (*)(e2e::Appliance&, e2e::Extent, e2e::KillFigures&);

// Returns whether all is well.
bool Sweep(const char* what, Sweeper sweep, e2e::Appliance& appliance, e2e::Extent extent) {
    e2e::KillFigures figures;
    if (!sweep(appliance, extent, figures)) {
        std::printf("requests cannot be followed on this machine\n");
        return false;
    }
    std::printf("%s:\n", what);
    Print(figures);
    return figures.faults.empty();
}

using Disturber = std::vector<std::string> (*)(const e2e::Appliance&, const e2e::AddOn&, unsigned, unsigned);

bool DisturbUpdates(const char* what, Disturber disturb, const e2e::Appliance& appliance, unsigned count) {
    std::size_t faults = 0;
    for (const e2e::AddOn& addOn : {e2e::kDevicePack, e2e::kLocalDisplay}) {
        for (const std::string& fault : disturb(appliance, addOn, kSeed, count)) {
            std::printf("%s %s\n", addOn.name, fault.c_str());
            ++faults;
        }
    }
    std::printf("%s during updates %u, faults %zu\n", what, 2 * count, faults);
    return faults == 0;
}

int RunAll(int argc, char** argv) {
    CLI::App options("Updates killed at each system call");
    bool isSample = false;
    unsigned inspections = 250;
    unsigned restores = 100;
    options.add_flag("--sample", isSample, "the last call of each kind and all that rename");
    options.add_option("--inspections", inspections, "during updates of each add-on");
    options.add_option("--restores", restores, "during updates of each add-on");
    CLI11_PARSE(options, argc, argv);
    const e2e::Extent extent = isSample ? e2e::Extent::kSample : e2e::Extent::kAll;

    e2e::Appliance appliance;
    bool isWell = DisturbUpdates("inspections", e2e::InspectDuringUpdates, appliance, inspections);
    isWell = DisturbUpdates("restores", e2e::RestoreDuringUpdates, appliance, restores) && isWell;
    isWell = Sweep("restores", e2e::SweepRestoreKills, appliance, extent) && isWell;
    isWell =
        Sweep("updates, work directories on the same disk", e2e::SweepKills, appliance, extent) && isWell;
    appliance.Stop();
    if (!MountWorkDirectories(appliance)) {
        std::printf("no other disk can be had on this machine\n");
        return EXIT_FAILURE;
    }
    appliance.Launch();
    isWell = Sweep("updates, work directories on another disk", e2e::SweepKills, appliance, extent) && isWell;
    return isWell ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return RunAll(argc, argv);
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "long_updates: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
