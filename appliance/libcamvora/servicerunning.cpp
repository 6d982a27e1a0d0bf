#include "libcamvora/servicerunning.h"

#include "libcamvora/daemonlock.h"
#include "libcamvora/daemontable.h"
#include "libcamvora/paths.h"

namespace camvora {

namespace {

constexpr int kCmsOption = 0;

}  // namespace

bool RunsNever(const ServiceEntry& /*entry*/, const State& /*state*/) {
    return false;
}

bool RunsByStatus(const ServiceEntry& entry, const State& state) {
    const auto status = state.statuses.find(entry.service);
    return status != state.statuses.end() && status->second == CONTROL_ACTION_START && IsCVRunning();
}

bool RunsByOption(const ServiceEntry& /*entry*/, const State& state) {
    const auto option = state.options.find(kCmsOption);
    return option != state.options.end() && option->second == Bool2String(true) && IsCVRunning();
}

bool RunsByDaemon(const ServiceEntry& entry, const State& /*state*/) {
    return ReadyLockHolder(DaemonLockFile(kRunFolder, entry.daemonType)) != 0;
}

}  // namespace camvora
