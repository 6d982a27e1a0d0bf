// Work on a daemon and its helper, one at a time: an update, a restore and the package's start script start
// and end daemons without the lock of their service.
#pragma once

#include "libcamvora/daemonprocess.h"

#include <functional>

namespace camvora {

// Does `work` with the daemon of `type`, which comes first, and its helper. Returns what it returns; false
// where there is no such daemon or its turn does not come, with a line in the diagnostic log.
bool InDaemonTurn(int type, const std::function<bool(const DaemonGroup&)>& work);

// To be called in turn. Both return false, with a line in the diagnostic log, when that fails.
bool EndGroup(const DaemonGroup& group);
bool ReplaceGroup(const DaemonGroup& group);

}  // namespace camvora
