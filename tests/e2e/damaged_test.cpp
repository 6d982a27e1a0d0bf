// Packages that are damaged end in an error or whole.
#include "e2e/mutants.h"

#include <gtest/gtest.h>

#include <string>

namespace e2e {
namespace {

TEST(DamagedPackage, EndsInAnErrorOrIsUnpackedAsItWasMeant) {
    constexpr unsigned kCount = 600;
    const Appliance appliance;
    const MutantFigures figures = InspectMutants(appliance, Seed(), kCount);
    for (const std::string& fault : figures.faults) {
        ADD_FAILURE() << "seed " << Seed() << ": " << fault;
    }
    EXPECT_GT(figures.taken, kCount / 10);
    EXPECT_LT(figures.taken, kCount / 2);
}

}  // namespace
}  // namespace e2e
