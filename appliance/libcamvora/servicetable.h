// The add-on services: what sets them apart, in one table.
#pragma once

#include "libcamvora/state.h"
#include "platform/services.h"

namespace camvora {

struct ServiceEntry {
    ADDON_SERVICE service;
    int daemonType;  // -1 for a service without a daemon
    const char* shortName;
    const char* name;
    const char* folder;  // of the installed add-on; null for a service without packages
    bool (*isRunning)(const ServiceEntry& entry, const State& state);
};

// The entry of `service`; null when there is no such service.
const ServiceEntry* FindService(ADDON_SERVICE service);

}  // namespace camvora
