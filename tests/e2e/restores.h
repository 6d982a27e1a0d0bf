// Restores of the factory's add-ons in a real appliance.
#pragma once

#include "e2e/updates.h"

namespace e2e {

// Where the factory's copy lies.
std::filesystem::path FactoryOf(const Appliance& appliance, const AddOn& addOn);

// Gives the tree the script that restores it; only that of the Device Pack has one.
void AddRestoreScript(const AddOn& addOn, AddOnTree& tree);

// Sends "Restore".
Answer Restore(const Appliance& appliance, const AddOn& addOn);

// Restores, `count` times, each time at a random moment of an update. Returns what is wrong with what is
// there afterwards, a line for each fault.
std::vector<std::string> RestoreDuringUpdates(const Appliance& appliance, const AddOn& addOn, unsigned seed,
                                              unsigned count);

}  // namespace e2e
