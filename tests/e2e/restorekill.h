// Restores of the factory's add-ons that are killed.
#pragma once

#include "e2e/killtrials.h"

namespace e2e {

// Has both add-ons of a running appliance restored again and again, killed at the next call each time. Adds
// what came of it. Returns false where the machine does not let restores be followed.
bool SweepRestoreKills(Appliance& appliance, Extent extent, KillFigures& figures);

}  // namespace e2e
