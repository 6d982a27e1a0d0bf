#include "client/feedbuild.h"

#include "client/failure.h"
#include "client/filedigest.h"
#include "client/packagecheck.h"
#include "client/plainfile.h"
#include "client/versionorder.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <map>
#include <system_error>

namespace client {
namespace {

namespace fs = std::filesystem;

constexpr const char* kServices[] = {"device_pack", "local_display"};
constexpr char kPackageEnd[] = ".spk";
constexpr char kNotesEnd[] = ".notes";
constexpr std::size_t kFileNameLimitBytes = 255;
constexpr std::size_t kVersionLimitBytes = 64;
constexpr std::size_t kNotesLimitBytes = 16UL * 1024;

using ReleasesOf = std::map<std::string, std::vector<FeedRelease>>;  // by add-on

std::string Today(std::time_t now) {
    std::array<char, 16> text{};
    std::tm parts{};
    gmtime_r(&now, &parts);
    (void)std::strftime(text.data(), text.size(), "%Y-%m-%d", &parts);
    return text.data();
}

// Such a text becomes a part of an address, or of a file's name on the appliance, which takes no other; with
// one release that it does not take it takes none.
bool IsPlainName(const std::string& text, std::size_t limitBytes) {
    constexpr char kAllowed[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
    return text.size() <= limitBytes && text.find_first_not_of(kAllowed) == std::string::npos &&
           text.find("..") == std::string::npos;
}

void CheckNames(const FeedRelease& release) {
    if (!IsPlainName(release.file, kFileNameLimitBytes) ||
        !IsPlainName(release.version, kVersionLimitBytes) ||
        !IsPlainName(release.lowestMainVersion, kVersionLimitBytes)) {
        throw Failure(ExitStatus::kRefused,
                      release.file +
                          " cannot be published: its name and its versions may be of letters, digits and "
                          "\"._-\", without \"..\", and versions of 64 bytes at most");
    }
}

std::string NotesFor(fs::path package) {
    const fs::path notes = package.replace_extension(kNotesEnd);
    if (!fs::exists(notes)) {
        return "";
    }
    const PlainFile file(notes);
    if (file.SizeBytes() > kNotesLimitBytes) {
        throw Failure(ExitStatus::kRefused, notes.string() + " is larger than 16 KiB");
    }
    return file.Text(kNotesLimitBytes);
}

void AddRelease(ReleasesOf& releases, const fs::path& path) {
    const PackageCheck check = CheckPackage(path, "");
    if (!check.identity || !BrokenRules(check.verdicts).empty()) {
        throw RuleFailure(path, check.verdicts, false);
    }
    const PlainFile file(path);
    FeedRelease release;
    release.version = check.identity->version;
    release.file = path.filename();
    release.sizeBytes = file.SizeBytes();
    release.sha256 = Sha256Of(file);
    release.lowestMainVersion = check.identity->lowestMainVersion;
    release.notes = NotesFor(path);
    CheckNames(release);
    releases[check.identity->service].push_back(release);
}

ReleasesOf ReadPackages(const std::string& dir) {
    ReleasesOf releases;
    std::error_code error;
    for (fs::directory_iterator it(dir, error), end; !error && it != end; it.increment(error)) {
        if (it->path().extension() == kPackageEnd) {
            AddRelease(releases, it->path());
        }
    }
    if (error) {
        const bool isMissing = error == std::errc::no_such_file_or_directory;
        throw Failure(isMissing ? ExitStatus::kNotFound : ExitStatus::kFailed,
                      "Cannot read " + dir + ": " + error.message());
    }
    return releases;
}

bool IsNewer(const FeedRelease& release, const FeedRelease& other) {
    return !IsAtLeast(other.version, release.version);
}

void Sort(std::vector<FeedRelease>& releases) {
    std::sort(releases.begin(), releases.end(), IsNewer);
    const auto twins = std::adjacent_find(
        releases.begin(), releases.end(),
        [](const FeedRelease& newer, const FeedRelease& older) { return !IsNewer(newer, older); });
    if (twins != releases.end()) {
        throw Failure(ExitStatus::kRefused,
                      twins->file + " and " + (twins + 1)->file + " are of the same version");
    }
}

// What was published before keeps its date.
void SetDates(std::vector<FeedRelease>& releases, const FeedIndex& last, const std::string& today) {
    for (FeedRelease& release : releases) {
        const auto before =
            std::find_if(last.releases.begin(), last.releases.end(), [&release](const FeedRelease& other) {
                return other.version == release.version && other.sha256 == release.sha256;
            });
        release.date = before == last.releases.end() ? today : before->date;
    }
}

FeedIndex NextIndex(const FeedIndex& last, std::vector<FeedRelease> releases) {
    const std::time_t now = std::time(nullptr);
    Sort(releases);
    SetDates(releases, last, Today(now));
    return {last.service, std::max(Json::Int64{now}, last.serial + 1), std::move(releases)};
}

}  // namespace

std::vector<FeedIndex> BuildFeed(const std::string& dir, const FeedKey& key) {
    ReleasesOf releases = ReadPackages(dir);
    std::vector<FeedIndex> indexes;
    for (const char* service : kServices) {
        const FeedIndex last = ReadFeedIndex(dir, service);
        if (last.serial > 0 || !releases[service].empty()) {
            indexes.push_back(NextIndex(last, releases[service]));
        }
    }
    if (indexes.empty()) {
        throw Failure(ExitStatus::kNotFound, "There are no packages (*.spk) in " + dir);
    }
    for (const FeedIndex& index : indexes) {
        WriteFeedIndex(dir, index, key);
    }
    return indexes;
}

}  // namespace client
