// Updates killed at each system call that changes the file system, and inspections during updates:
//
//   long_updates [--sample] [--inspections N]
//
// Prints for each program and call what was in the place of the add-on afterwards, and each fault.
#include "e2e/updates.h"
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

// Returns whether all is well.
bool Sweep(const char* disk, e2e::Appliance& appliance, e2e::Extent extent) {
    e2e::KillFigures figures;
    if (!SweepKills(appliance, extent, figures)) {
        std::printf("updates cannot be followed on this machine\n");
        return false;
    }
    std::printf("work directories on %s:\n", disk);
    Print(figures);
    return figures.faults.empty();
}

bool InspectMeanwhile(const e2e::Appliance& appliance, unsigned count) {
    std::size_t faults = 0;
    for (const e2e::AddOn& addOn : {e2e::kDevicePack, e2e::kLocalDisplay}) {
        for (const std::string& fault : InspectDuringUpdates(appliance, addOn, kSeed, count)) {
            std::printf("%s %s\n", addOn.name, fault.c_str());
            ++faults;
        }
    }
    std::printf("inspections during updates %u, faults %zu\n", 2 * count, faults);
    return faults == 0;
}

int RunAll(int argc, char** argv) {
    CLI::App options("Updates killed at each system call");
    bool isSample = false;
    unsigned inspections = 250;
    options.add_flag("--sample", isSample, "the last call of each kind only");
    options.add_option("--inspections", inspections, "during updates of each add-on");
    CLI11_PARSE(options, argc, argv);
    const e2e::Extent extent = isSample ? e2e::Extent::kSample : e2e::Extent::kAll;

    e2e::Appliance appliance;
    bool isWell = InspectMeanwhile(appliance, inspections);
    isWell = Sweep("the same disk", appliance, extent) && isWell;
    appliance.Stop();
    if (!MountWorkDirectories(appliance)) {
        std::printf("no other disk can be had on this machine\n");
        return EXIT_FAILURE;
    }
    appliance.Launch();
    isWell = Sweep("another disk", appliance, extent) && isWell;
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
