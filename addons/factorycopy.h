// What an add-on is as it leaves the factory.
#pragma once

#include "platform/services.h"

// Puts a copy of the factory's tree of the add-on of `service` into its place, where nothing is there and
// such a tree exists. All of it arrives or nothing. Returns false when it could not be put there. To be
// called with the package lock held.
bool FillEmptyPlace(ADDON_SERVICE service);
