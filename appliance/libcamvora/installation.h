// Installations of add-ons. Those who are connected are notified of one, which is all that a request says of
// it: the operation log has it from there.
#pragma once

#include <array>
#include <optional>
#include <string>

namespace camvora {

// The event of the operation log that tells of add-ons.
inline constexpr int kAddOnEvent = 0x133000B5;

// The texts for the operation log, when a notification of that type and with these texts is one of an
// installation: the service's name and what is installed now. Nothing for any other.
std::optional<std::array<std::string, 3>> InstallationToldBy(int type,
                                                             const std::array<std::string, 3>& texts);

}  // namespace camvora
