// The daemons as the start script of the main package stops and starts them.
//
// A file in the run folder says of each daemon that was stopped so. It is made before the daemon ends, and
// goes when the daemon is back: whoever is killed in between, and however often the package is stopped, the
// next start finds all that ran.
#pragma once

#include "libcamvora/daemontable.h"

namespace camvora {

// Ends all daemons but those that could not be noted. Returns false when one is left.
bool StopPackageDaemons();

// Starts those that StopPackageDaemons has ended. Returns false when one did not come up.
bool StartPackageDaemons();

// The daemon is not to come back. To be called in its turn.
void ForgetStopped(const DaemonEntry& daemon);

}  // namespace camvora
