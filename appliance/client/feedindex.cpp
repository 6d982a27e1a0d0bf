#include "client/feedindex.h"

#include "client/failure.h"
#include "client/feedkey.h"
#include "client/jsontext.h"
#include "client/newfile.h"
#include "client/plainfile.h"

#include <filesystem>

namespace client {
namespace {

constexpr std::size_t kIndexLimitBytes = 256UL * 1024;  // the appliance reads no larger one

Json::Value ReleaseDocument(const FeedRelease& release) {
    Json::Value document;
    document["version"] = release.version;
    document["file"] = release.file;
    document["size"] = Json::UInt64{release.sizeBytes};
    document["sha256"] = release.sha256;
    document["lowestMainVersion"] = release.lowestMainVersion;
    document["date"] = release.date;
    document["notes"] = release.notes;
    return document;
}

}  // namespace

std::string IndexPath(const std::string& dir, const std::string& service) {
    return std::filesystem::path(dir) / (service + ".json");
}

FeedIndex ReadFeedIndex(const std::string& dir, const std::string& service) {
    const std::string path = IndexPath(dir, service);
    FeedIndex index{service};
    if (!std::filesystem::exists(path)) {
        return index;
    }
    Json::Value document;
    Json::Value payload;
    if (!ParseJson(PlainFile(path).Text(kIndexLimitBytes), document) ||
        !ParseJson(LeafText(Member(document, "payload")), payload) || !Member(payload, "serial").isInt64()) {
        throw Failure(ExitStatus::kFailed, path + " is no index of a feed; move it away");
    }
    index.serial = Member(payload, "serial").asInt64();
    for (const Json::Value& entry : Member(payload, "releases")) {
        FeedRelease release;
        release.version = LeafText(Member(entry, "version"));
        release.sha256 = LeafText(Member(entry, "sha256"));
        release.date = LeafText(Member(entry, "date"));
        index.releases.push_back(release);
    }
    return index;
}

Json::Value FeedIndexDocument(const FeedIndex& index) {
    Json::Value document;
    document["service"] = index.service;
    document["serial"] = index.serial;
    document["releases"] = Json::Value(Json::arrayValue);
    for (const FeedRelease& release : index.releases) {
        document["releases"].append(ReleaseDocument(release));
    }
    return document;
}

void WriteFeedIndex(const std::string& dir, const FeedIndex& index, const FeedKey& key) {
    Json::Value document;
    document["payload"] = ToJson(FeedIndexDocument(index));
    document["signature"] = key.Sign(document["payload"].asString());
    const std::string text = ToJson(document) + "\n";
    const std::string path = IndexPath(dir, index.service);
    if (text.size() > kIndexLimitBytes) {
        throw Failure(ExitStatus::kFailed,
                      path + " would be larger than 256 KiB; take old packages away or shorten notes");
    }
    NewFile file(path);
    file.Write(text);
    file.Finish();
}

}  // namespace client
