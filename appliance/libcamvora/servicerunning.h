// The ways in which services run, for the table of services.
#pragma once

#include "libcamvora/servicetable.h"

namespace camvora {

// False: there is nothing that could run.
bool RunsNever(const ServiceEntry& entry, const State& state);

// A service without a process: it runs when it was started last and the package is started.
bool RunsByStatus(const ServiceEntry& entry, const State& state);

// Central management: it runs when its option of the web user interface is on and the package is started.
bool RunsByOption(const ServiceEntry& entry, const State& state);

// A service with a daemon: it runs while its daemon does.
bool RunsByDaemon(const ServiceEntry& entry, const State& state);

}  // namespace camvora
