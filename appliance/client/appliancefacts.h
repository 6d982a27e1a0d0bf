// What the checks of a package compare it with: files in the appliance's folder.
#pragma once

#include "client/packagescan.h"

#include <cstdint>
#include <optional>
#include <string>

namespace client {

// Values that cannot be read are nothing.
struct ApplianceFacts {
    std::optional<std::string> arch;     // of the main package
    std::optional<std::string> version;  // of the main package
    std::optional<std::string> devicePackMinVersion;
    std::optional<std::string> localDisplayMinVersion;
    std::string platform;  // of the machine; empty when it has none
    std::optional<std::uint64_t> freeBytes;
};

// Reads the facts of the appliance in the folder `dir`. Nothing when no main package is installed there.
std::optional<ApplianceFacts> ReadApplianceFacts(const std::string& dir);

// The version of an add-on's factory copy in that folder, empty when it cannot be read.
//   service  its short name
std::string ReadFactoryVersion(const std::string& dir, const std::string& service);

// The limits to which that appliance unpacks. Without `dir`, and where its settings do not say otherwise,
// those of every appliance.
ScanLimits ReadScanLimits(const std::string& dir);

}  // namespace client
