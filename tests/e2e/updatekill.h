// Updates that are killed.
#pragma once

#include "e2e/killtrials.h"

namespace e2e {

// Has both add-ons of a running appliance updated again and again, killed at the next call each time. Adds
// what came of it. Returns false where the machine does not let updates be followed.
bool SweepKills(Appliance& appliance, Extent extent, KillFigures& figures);

// Puts a disk of its own on each work directory of the appliance, which does not run, for the calling process
// and all that it forks; it has one thread. Returns false where the machine refuses it.
bool MountWorkDirectories(const Appliance& appliance);

}  // namespace e2e
