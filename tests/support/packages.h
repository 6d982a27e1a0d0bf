// Packages of every kind, made with the library that reads them.
#pragma once

#include <string>
#include <vector>

struct TestEntry {
    std::string name;
    std::string content = {};  // of a link: where it leads
    char kind = 'f';           // file, 'd' folder, 'l' link, 'h' hard link, 'p' pipe
};

// A tar archive of these entries, of the format that GNU tar writes, or of the other where `isPax`.
std::string MakeTar(const std::vector<TestEntry>& entries, bool isCompressed = false, bool isPax = false);

// The bytes compressed.
std::string Gzip(const std::string& bytes);

// A good INFO and conf of the two add-ons.
inline constexpr char kDevicePackInfo[] = "package=\"CamvoraDevicePack\"\narch=\"plat1  plat2\"\n";
inline constexpr char kLocalDisplayInfo[] = "package=\"CamvoraLocalDisplay\"\narch=\"plat1 plat2\"\n";
inline constexpr char kGoodConf[] = "version=\"2.2-1\"\nmaintainer=\"Me\"\ncv_min_ver=\"3.0\"\n";

// A package of that tree, which is packed as it is.
std::string MakePackage(const std::string& info, const std::vector<TestEntry>& tree);

// A package of the Device Pack with that in addition to its good conf.
std::string MakeDevicePack(const std::vector<TestEntry>& more = {});
