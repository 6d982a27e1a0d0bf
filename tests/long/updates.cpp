// Updates killed at each system call that changes the file system:
//
//   long_updates [--sample]
//
// Prints for each program and call what was in the place of the add-on afterwards, and each fault.
#include "e2e/updatekill.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

void Print(const std::string& program, const std::string& call, const e2e::TrialCounts& counts) {
    std::printf("%-20s %-16s %6u %6u %6u %6u %8u\n", program.c_str(), call.c_str(), counts.trials, counts.old,
                counts.fresh, counts.none, counts.mixture);
}

void Print(const e2e::KillFigures& figures) {
    std::printf("%-20s %-16s %6s %6s %6s %6s %8s\n", "program", "system call", "trials", "old", "new", "none",
                "mixture");
    for (const auto& [programAndCall, counts] : figures.byCall) {
        Print(programAndCall.first, programAndCall.second, counts);
    }
    Print("all", "", figures.all);
    std::printf("longest next update %.2f s, faults %zu\n", figures.longestS, figures.faults.size());
    for (const std::string& fault : figures.faults) {
        std::printf("%s\n", fault.c_str());
    }
}

int SweepAll(int argc, char** argv) {
    CLI::App options("Updates killed at each system call");
    bool isSample = false;
    options.add_flag("--sample", isSample, "the first and the last call of a kind only");
    CLI11_PARSE(options, argc, argv);
    const e2e::Extent extent = isSample ? e2e::Extent::kSample : e2e::Extent::kAll;

    e2e::KillFigures figures;
    e2e::Appliance appliance;
    if (!SweepKills(appliance, extent, figures)) {
        std::printf("updates cannot be followed on this machine\n");
        return EXIT_FAILURE;
    }
    std::printf("work directories on the same disk:\n");
    Print(figures);
    appliance.Stop();
    if (!MountWorkDirectories(appliance)) {
        std::printf("no other disk can be had on this machine\n");
        return EXIT_FAILURE;
    }
    appliance.Launch();
    e2e::KillFigures across;
    SweepKills(appliance, extent, across);
    std::printf("work directories on another disk:\n");
    Print(across);
    return figures.faults.empty() && across.faults.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return SweepAll(argc, argv);
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "long_updates: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
