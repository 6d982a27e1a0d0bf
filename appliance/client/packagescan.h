// What a package file holds, read without unpacking it.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace client {

class PlainFile;

inline constexpr char kInfoName[] = "INFO";
inline constexpr char kTreeArchiveName[] = "package.tgz";
inline constexpr char kConfName[] = "conf";
inline constexpr char kDevicePackFolder[] = "device_pack";

// Of each of the two archives.
struct ScanLimits {
    std::uint64_t sizeBytes;  // of all files together
    std::uint64_t entries;
};

// Names are those of the first that was found, empty for none.
struct PackageScan {
    std::string damage;  // why it could not be read to its end; what follows is incomplete then
    std::string excess;  // in what it goes beyond the limits; incomplete, too
    ScanLimits limits{};

    unsigned int infoCount = 0;         // of plain files "INFO"
    unsigned int treeArchiveCount = 0;  // of plain files "package.tgz"
    std::string info;
    std::map<std::string, std::string> confs;  // by name: "conf", "device_pack/conf"

    std::uint64_t entries = 0;    // in both archives
    std::uint64_t sizeBytes = 0;  // of all files in both

    std::string strayName;          // that leads out of the folder where it is unpacked
    std::string badLink;            // a link or special file where none may be
    std::string besidesDevicePack;  // in the tree's archive, but not in "device_pack"
};

// Reads all of `file`, as far as it keeps to the limits. Never throws.
PackageScan ScanPackage(const PlainFile& file, const ScanLimits& limits);

}  // namespace client
