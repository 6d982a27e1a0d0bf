#include "client/packagescan.h"

#include "client/archivereader.h"
#include "client/keyvalue.h"
#include "client/plainfile.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace client {
namespace {

using Path = std::filesystem::path;

constexpr std::uint64_t kFrameBytes = 1024UL * 1024;

struct Place {
    std::string_view name;
    EntryKind kind;
};

// What the appliance reads or runs, below "device_pack" or at the top: each is of that kind or absent.
constexpr Place kPlaces[] = {
    {"", EntryKind::kFolder},
    {"conf", EntryKind::kFile},
    {"script", EntryKind::kFolder},
    {"script/preupgrade", EntryKind::kFile},
    {"script/preinst", EntryKind::kFile},
    {"script/postinst", EntryKind::kFile},
    {"script/postupgrade", EntryKind::kFile},
    {"script/restore", EntryKind::kFile},
};

struct Excess : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void Note(std::string& first, const std::string& name) {
    if (first.empty()) {
        first = name.empty() ? "(no name)" : name;
    }
}

bool LeadsOut(const Path& path) {
    return path.empty() || path.is_absolute() || std::find(path.begin(), path.end(), "..") != path.end();
}

// "./a//b/" is "a/b", and the archive's own folder is "".
std::string NormalName(const std::string& name) {
    std::string normal = Path(name).lexically_normal();
    normal.erase(normal.find_last_not_of('/') + 1);
    return normal == "." ? "" : normal;
}

bool IsInDevicePack(const std::string& name) {
    return name.empty() || *Path(name).begin() == kDevicePackFolder;
}

bool FitsItsPlace(const std::string& name, EntryKind kind) {
    const Path below = IsInDevicePack(name) ? Path(name).lexically_relative(kDevicePackFolder) : Path(name);
    const std::string place = NormalName(below);
    return std::all_of(std::begin(kPlaces), std::end(kPlaces),
                       [&](const Place& row) { return row.name != place || row.kind == kind; });
}

bool IsConf(const std::string& name) {
    return name == kConfName || Path(name) == Path(kDevicePackFolder) / kConfName;
}

// `name` is that of the link.
bool StaysInTree(const std::string& name, const ArchiveEntry& entry) {
    const Path base = entry.kind == EntryKind::kLink ? Path(name).parent_path() : Path();
    const Path target = base / entry.target;
    const std::string reached = NormalName(target);
    return !entry.target.empty() && !LeadsOut(reached) && IsInDevicePack(reached) == IsInDevicePack(name);
}

bool IsLink(const ArchiveEntry& entry) {
    return entry.kind == EntryKind::kLink || entry.kind == EntryKind::kHardLink;
}

// With what lies between the files.
std::uint64_t StreamLimit(const ScanLimits& limits) {
    return 2 * limits.sizeBytes + kFrameBytes;
}

std::string TextOf(ArchiveReader& archive, const ArchiveEntry& entry) {
    if (entry.sizeBytes > kKeyFileLimitBytes) {
        return "";
    }
    std::string text(entry.sizeBytes, '\0');
    text.resize(archive.Read(text.data(), text.size()));
    return text;
}

class Scanner {
public:
    explicit Scanner(PackageScan& scan) : limits_(scan.limits), scan_(scan) {}

    void ScanOuter(ArchiveReader& archive) {
        Totals totals;
        for (ArchiveEntry entry; archive.Next(entry);) {
            Count(entry, totals);
            TakeOuter(archive, entry);
        }
    }

private:
    struct Totals {
        std::uint64_t entries = 0;
        std::uint64_t sizeBytes = 0;
    };

    // A single entry may claim any size.
    void Count(const ArchiveEntry& entry, Totals& totals) {
        const std::uint64_t leftBytes = limits_.sizeBytes - totals.sizeBytes;
        if (entry.sizeBytes > leftBytes) {
            throw Excess("too many bytes");
        }
        if (++totals.entries > limits_.entries) {
            throw Excess("too many files and folders");
        }
        totals.sizeBytes += entry.sizeBytes;
        scan_.entries += 1;
        scan_.sizeBytes += entry.sizeBytes;
        if (LeadsOut(entry.name)) {
            Note(scan_.strayName, entry.name);
        }
    }

    void TakeOuter(ArchiveReader& archive, const ArchiveEntry& entry) {
        const std::string name = NormalName(entry.name);
        if (IsLink(entry) || entry.kind == EntryKind::kSpecial) {
            Note(scan_.badLink, entry.name);
        } else if (entry.kind == EntryKind::kFile && name == kInfoName) {
            ++scan_.infoCount;
            scan_.info = TextOf(archive, entry);
        } else if (entry.kind == EntryKind::kFile && name == kTreeArchiveName) {
            if (++scan_.treeArchiveCount == 1) {
                ScanTree(archive);
            }
        }
    }

    void ScanTree(ArchiveReader& outer) {
        ArchiveReader archive([&outer](char* buffer, std::size_t size) { return outer.Read(buffer, size); },
                              StreamLimit(limits_));
        Totals totals;
        for (ArchiveEntry entry; archive.Next(entry);) {
            Count(entry, totals);
            TakeTree(archive, entry);
        }
    }

    void TakeTree(ArchiveReader& archive, const ArchiveEntry& entry) {
        const std::string name = NormalName(entry.name);
        const bool isLeadingOut = IsLink(entry) && !StaysInTree(name, entry);
        if (isLeadingOut || entry.kind == EntryKind::kSpecial || !FitsItsPlace(name, entry.kind)) {
            Note(scan_.badLink, entry.name);
        }
        if (!IsInDevicePack(name)) {
            Note(scan_.besidesDevicePack, entry.name);
        }
        if (entry.kind == EntryKind::kFile && IsConf(name)) {
            scan_.confs[name] = TextOf(archive, entry);
        }
    }

    const ScanLimits limits_;
    PackageScan& scan_;
};

}  // namespace

PackageScan ScanPackage(const PlainFile& file, const ScanLimits& limits) {
    PackageScan scan;
    scan.limits = limits;
    try {
        std::uint64_t offset = 0;
        ArchiveReader archive(
            [&](char* buffer, std::size_t sizeBytes) {
                const std::size_t size = file.ReadAt(offset, buffer, sizeBytes);
                offset += size;
                return size;
            },
            StreamLimit(limits));
        Scanner(scan).ScanOuter(archive);
    } catch (const Excess& excess) {
        scan.excess = excess.what();
    } catch (const ArchiveDamage& damage) {
        scan.damage = damage.what();
    }
    return scan;
}

}  // namespace client
