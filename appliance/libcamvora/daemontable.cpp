#include "libcamvora/daemontable.h"

#include <algorithm>
#include <iterator>

namespace camvora {

namespace {

constexpr DaemonEntry kDaemons[] = {
    {"service3d", 1, -1, 1},
    {"cmsd", 4, -1, 4},
    {"service5d", 6, -1, 6},
    {"localdisplayd", 11, 12, 11},
    {"localdisplayhelperd", 12, -1, 11},
};

}  // namespace

const DaemonEntry* FindDaemon(int type) {
    const auto* const entry =
        std::find_if(std::begin(kDaemons), std::end(kDaemons),
                     [type](const DaemonEntry& candidate) { return candidate.type == type; });
    return entry == std::end(kDaemons) ? nullptr : entry;
}

std::vector<int> GroupLeaders() {
    std::vector<int> types;
    for (const DaemonEntry& daemon : kDaemons) {
        if (daemon.turnType == daemon.type) {
            types.push_back(daemon.type);
        }
    }
    return types;
}

std::string DaemonLockFile(const std::string& folder, int type) {
    return folder + "/daemon-" + std::to_string(type) + ".lock";
}

std::string DaemonGuardFile(const std::string& folder, int type) {
    return folder + "/daemon-" + std::to_string(type) + ".guard";
}

std::string DaemonStoppedFile(const std::string& folder, int type) {
    return folder + "/daemon-" + std::to_string(type) + ".stopped";
}

std::string DaemonPidFile(const std::string& folder, const DaemonEntry& entry) {
    return folder + "/" + entry.name + ".pid";
}

std::string DaemonStatusFile(const std::string& folder, const DaemonEntry& entry) {
    return folder + "/" + entry.name + ".status";
}

}  // namespace camvora
