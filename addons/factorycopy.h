// What an add-on is as it leaves the factory.
#pragma once

#include "platform/services.h"

// Both take the tree that lies beside the place of the add-on of `service`, and keep it. All of it arrives or
// nothing. To be called with the package lock held.

// Puts a copy of it into the place where nothing is there, and removes what a cut copy has left. Returns
// false when such a tree exists and could not be put there.
bool FillEmptyPlace(ADDON_SERVICE service);

// Puts a copy of it in place of what is installed. Returns false, with a log line, when what was installed is
// still there.
bool RestoreFactoryCopy(ADDON_SERVICE service);
