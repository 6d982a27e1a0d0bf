// The process that speaks HTTP.
#pragma once

#include "host/credentials.h"
#include "host/module.h"
#include "host/options.h"
#include "host/uniquefd.h"

namespace host {

// Serves HTTP on `listener` and hands requests in at `intake`, with threads, until SIGTERM; then answers what
// runs. Returns the process's exit status. It never forks.
int RunHttpProcess(UniqueFd listener, UniqueFd intake, const Module& module, const Credentials& credentials,
                   const Options& options);

}  // namespace host
