#include "client/appliancefacts.h"

#include "client/failure.h"
#include "client/keyvalue.h"
#include "client/plainfile.h"

#include <sys/statvfs.h>

#include <charconv>
#include <system_error>

namespace client {
namespace {

constexpr char kMainInfo[] = "/var/packages/Camvora/INFO";
constexpr char kTarget[] = "/var/packages/Camvora/target";
constexpr char kMainConf[] = "/var/packages/Camvora/target/etc/cv.conf";
constexpr char kProgramsConf[] = "/var/packages/Camvora/target/etc/programs.conf";
constexpr char kMachineInfo[] = "/etc.defaults/orvainfo.conf";

constexpr std::uint64_t kMiB = 1024UL * 1024;
constexpr std::uint64_t kSizeLimitMiB = 2048;
constexpr std::uint64_t kEntriesLimit = 50'000;
constexpr std::size_t kUniqueLimitBytes = 127;

std::optional<std::string> ReadText(const std::string& path) {
    try {
        return PlainFile(path).Text(kKeyFileLimitBytes);
    } catch (const Failure&) {
        return std::nullopt;
    }
}

// What stands between the first and the last "_".
std::string PlatformIn(const std::string& unique) {
    const std::size_t first = unique.find('_');
    const std::size_t last = unique.rfind('_');
    return first == last ? "" : unique.substr(first + 1, last - first - 1);
}

std::optional<std::uint64_t> FreeBytes(const std::string& folder) {
    struct statvfs status {};
    if (statvfs(folder.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return std::uint64_t{status.f_bavail} * status.f_frsize;
}

std::uint64_t NumberOf(const std::string& text, const char* key, std::uint64_t defaultValue) {
    const std::string digits = ValueOf(text, key).value_or("");
    std::uint64_t number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && stop == digits.data() + digits.size();
    return isNumber && number > 0 && number < UINT64_MAX / (4 * kMiB) ? number : defaultValue;
}

}  // namespace

std::optional<ApplianceFacts> ReadApplianceFacts(const std::string& dir) {
    const std::optional<std::string> info = dir.empty() ? std::nullopt : ReadText(dir + kMainInfo);
    if (!info) {
        return std::nullopt;
    }
    const std::string conf = ReadText(dir + kMainConf).value_or("");
    const std::string machine = ReadText(dir + kMachineInfo).value_or("");
    ApplianceFacts facts;
    facts.arch = ValueOf(*info, "arch");
    facts.version = ValueOf(*info, "version");
    facts.devicePackMinVersion = ValueOf(conf, "dp_min_ver");
    facts.localDisplayMinVersion = ValueOf(conf, "local_display_min_ver");
    facts.platform = PlatformIn(ValueOf(machine, "unique", kUniqueLimitBytes).value_or(""));
    facts.freeBytes = FreeBytes(dir + kTarget);
    return facts;
}

std::string ReadFactoryVersion(const std::string& dir, const std::string& service) {
    const std::string conf = dir + kTarget + "/" + service + ".default/conf";
    return dir.empty() ? "" : ValueOf(ReadText(conf).value_or(""), "version").value_or("");
}

ScanLimits ReadScanLimits(const std::string& dir) {
    const std::string conf = dir.empty() ? "" : ReadText(dir + kProgramsConf).value_or("");
    return {NumberOf(conf, "unpack_size_limit_mib", kSizeLimitMiB) * kMiB,
            NumberOf(conf, "unpack_entries_limit", kEntriesLimit)};
}

}  // namespace client
