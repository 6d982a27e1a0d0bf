// Packages of every kind.
#pragma once

#include "support/tararchive.h"

#include <string>
#include <vector>

// The bytes compressed.
std::string Gzip(const std::string& bytes);

// A good INFO and conf of the two add-ons.
inline constexpr char kDevicePackInfo[] = "package=\"CamvoraDevicePack\"\narch=\"plat1  plat2\"\n";
inline constexpr char kLocalDisplayInfo[] = "package=\"CamvoraLocalDisplay\"\narch=\"plat1 plat2\"\n";
inline constexpr char kGoodConf[] = "version=\"2.2-1\"\nmaintainer=\"Me\"\ncv_min_ver=\"3.0\"\n";

// A package of that tree, which is packed as it is.
std::string MakePackage(const std::string& info, const std::vector<TarMember>& tree);

// A package of the Device Pack with that in addition to its good conf.
std::string MakeDevicePack(const std::vector<TarMember>& more = {});
