// Good packages, each damaged or altered somewhere at random.
#pragma once

#include "e2e/inspection.h"

#include <string>
#include <vector>

namespace e2e {

struct MutantFigures {
    unsigned taken = 0;
    std::vector<std::string> faults;  // a line for each
};

// Has the appliance inspect `count` packages with bytes flipped, cut short, with members swapped or with
// other values, half of them for each add-on at the same time, and looks afterwards whether anything outside
// of the work directories has changed. The same seed gives the same ones.
MutantFigures InspectMutants(const Appliance& appliance, unsigned seed, unsigned count);

}  // namespace e2e
