// Damaged and altered packages before an appliance of its own:
//
//   long_packages [--count N] [--seed S]
//
// Prints each fault with what repeats it.
#include "e2e/mutants.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <random>

namespace {

int InspectMany(int argc, char** argv) {
    CLI::App options("Damaged packages before an appliance");
    unsigned count = 10'000;
    unsigned seed = std::random_device()();
    options.add_option("--count", count, "packages in all");
    options.add_option("--seed", seed, "of what is damaged; another one each time otherwise");
    CLI11_PARSE(options, argc, argv);

    std::printf("seed %u\n", seed);
    const e2e::Appliance appliance;
    const e2e::MutantFigures figures = InspectMutants(appliance, seed, count);
    for (const std::string& fault : figures.faults) {
        std::printf("%s\n", fault.c_str());
    }
    std::printf("inspected %u, taken %u, longest %.2f s, faults %zu\n", count, figures.taken,
                figures.longestS, figures.faults.size());
    return figures.faults.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return InspectMany(argc, argv);
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "long_packages: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
