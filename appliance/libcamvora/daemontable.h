// The package's daemons: what sets them apart, in one table.
#pragma once

#include "platform/services.h"

#include <string>
#include <vector>

namespace camvora {

struct DaemonEntry {
    const char* name;
    int type;
    int helperType;  // the daemon that is started and ended with this one; -1 for none
    int turnType;    // the daemon in whose turn this one is started and ended: its own, or the one it helps
};

// The entry of `type`; null when there is no such daemon.
const DaemonEntry* FindDaemon(int type);

// The types of all daemons that are no other's helper.
std::vector<int> GroupLeaders();

// Files of a daemon, in `folder`, the appliance's run folder.
std::string DaemonLockFile(const std::string& folder, int type);
std::string DaemonGuardFile(const std::string& folder, int type);
std::string DaemonStoppedFile(const std::string& folder, int type);
std::string DaemonPidFile(const std::string& folder, const DaemonEntry& entry);
std::string DaemonStatusFile(const std::string& folder, const DaemonEntry& entry);

}  // namespace camvora
