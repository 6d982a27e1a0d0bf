// Good packages, each damaged or altered somewhere at random.
#pragma once

#include "e2e/inspection.h"

#include <random>
#include <string>
#include <vector>

namespace e2e {

struct Mutant {
    std::string package;
    std::string meant;  // where it counts as damaged, the package that it was; else the same
};

using MakeMutant = Mutant (*)(const AddOn& addOn, std::mt19937& random);

// Bytes flipped, the file cut short, members swapped, other values: one of all.
Mutant MakeAnyMutant(const AddOn& addOn, std::mt19937& random);

// One whose "package.tgz" is cut short, in an otherwise good package.
Mutant MakeCutTree(const AddOn& addOn, std::mt19937& random);

struct MutantFigures {
    unsigned taken = 0;
    std::vector<std::string> faults;  // a line for each
};

// Has the appliance inspect `count` mutants, half of them for each add-on at the same time, and looks
// afterwards whether anything outside of the work directories has changed. The same seed gives the same ones.
MutantFigures InspectMutants(const Appliance& appliance, MakeMutant make, unsigned seed, unsigned count);

}  // namespace e2e
