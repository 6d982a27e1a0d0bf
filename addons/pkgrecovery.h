// What an update that was killed has left.
#pragma once

#include "platform/services.h"

// Makes sure that the place of the add-on of `service` holds what was installed before the update, or what
// the update has wholly installed; what was unpacked for a cut update is removed. Returns false when that is
// not possible; for a service without packages nothing happens. To be called with the package lock held,
// before anything is unpacked; also by the start of the appliance.
bool RecoverAddOn(ADDON_SERVICE service);
