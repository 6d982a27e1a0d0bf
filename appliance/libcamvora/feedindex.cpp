#include "libcamvora/feedindex.h"

#include "libcamvora/jsonobject.h"
#include "libcamvora/updatesettings.h"
#include "platform/releases.h"

#include <algorithm>

namespace camvora {

namespace {

constexpr char kVersionCharacters[] =
    "0123456789"
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    "abcdefghijklmnopqrstuvwxyz"
    "._-";
constexpr char kHexDigits[] = "0123456789abcdef";
constexpr std::size_t kVersionLimitBytes = 64;
constexpr std::size_t kFileNameLimitBytes = 255;
constexpr std::size_t kSha256Digits = 64;
constexpr std::size_t kDateLimitBytes = 64;
constexpr std::size_t kNotesLimitBytes = 64 << 10;
constexpr Json::ArrayIndex kReleasesLimit = 1000;
constexpr long long kSizeLimitBytes = 1LL << 40;

[[noreturn]] void Refuse(const char* member) {
    throw UpdateFailure(std::string("the index has no good \"") + member + "\"");
}

std::string Text(const Json::Value& object, const char* member, std::size_t limitBytes) {
    const Json::Value& value = object[member];
    if (!value.isString() || value.asString().size() > limitBytes) {
        Refuse(member);
    }
    return value.asString();
}

long long Number(const Json::Value& object, const char* member, long long lowest, long long highest) {
    const Json::Value& value = object[member];
    if (!value.isInt64() || value.asInt64() < lowest || value.asInt64() > highest) {
        Refuse(member);
    }
    return value.asInt64();
}

bool HasControlCharacter(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; });
}

// It becomes part of a file name.
std::string Version(const Json::Value& object, const char* member) {
    std::string version = Text(object, member, kVersionLimitBytes);
    if (version.find_first_not_of(kVersionCharacters) != std::string::npos) {
        Refuse(member);
    }
    return version;
}

std::string FileName(const Json::Value& object) {
    std::string name = Text(object, "file", kFileNameLimitBytes);
    if (name.empty() || name.find('/') != std::string::npos || name.find("..") != std::string::npos ||
        HasControlCharacter(name)) {
        Refuse("file");
    }
    return name;
}

std::string Sha256(const Json::Value& object) {
    std::string sha256 = Text(object, "sha256", kSha256Digits);
    if (sha256.size() != kSha256Digits || sha256.find_first_not_of(kHexDigits) != std::string::npos) {
        Refuse("sha256");
    }
    return sha256;
}

std::string Date(const Json::Value& object) {
    std::string date = Text(object, "date", kDateLimitBytes);
    if (HasControlCharacter(date)) {
        Refuse("date");
    }
    return date;
}

Release ReadRelease(const Json::Value& value) {
    if (!value.isObject()) {
        Refuse("releases");
    }
    Release release;
    release.version = Version(value, "version");
    if (release.version.empty()) {
        Refuse("version");
    }
    release.file = FileName(value);
    release.sizeBytes = Number(value, "size", 1, kSizeLimitBytes);
    release.sha256 = Sha256(value);
    release.lowestMainVersion = Version(value, "lowestMainVersion");
    release.date = Date(value);
    release.notes = Text(value, "notes", kNotesLimitBytes);
    return release;
}

Json::Value SignedPayload(const std::string& text, const FeedKey& key) {
    const auto signedIndex = ParseJsonObject(text);
    if (!signedIndex) {
        throw UpdateFailure("the index is no JSON object");
    }
    const std::string payload = Text(*signedIndex, "payload", kFeedIndexLimitBytes);
    if (!key.HasSigned(payload, Text(*signedIndex, "signature", kFeedIndexLimitBytes))) {
        throw UpdateFailure("the index is not signed by the key of the feed");
    }
    const auto parsed = ParseJsonObject(payload);
    if (!parsed) {
        Refuse("payload");
    }
    return *parsed;
}

}  // namespace

FeedIndex ReadFeedIndex(const std::string& text, const FeedKey& key, const std::string& shortName) {
    const Json::Value payload = SignedPayload(text, key);
    if (payload["service"] != shortName) {
        throw UpdateFailure("the index is that of another add-on");
    }
    FeedIndex index;
    index.serial = Number(payload, "serial", 0, Json::Value::maxInt64);
    const Json::Value& releases = payload["releases"];
    if (!releases.isArray() || releases.size() > kReleasesLimit) {
        Refuse("releases");
    }
    for (const Json::Value& release : releases) {
        index.releases.push_back(ReadRelease(release));
    }
    return index;
}

std::optional<Release> ChooseRelease(const FeedIndex& index, const std::string& installedVersion,
                                     const std::string& mainVersion) {
    std::optional<Release> newest;
    for (const Release& release : index.releases) {
        const std::string& oldest = newest ? newest->version : installedVersion;
        const bool isNewer = oldest.empty() || AddonsUpdate::IsVersionNewer(release.version, oldest, false);
        const bool fits = release.lowestMainVersion.empty() ||
                          AddonsUpdate::IsVersionNewer(mainVersion, release.lowestMainVersion, true);
        if (isNewer && fits) {
            newest = release;
        }
    }
    return newest;
}

}  // namespace camvora
