#include "libcamvora/releasecheck.h"

#include "libcamvora/feeds.h"
#include "libcamvora/httpget.h"
#include "libcamvora/utctime.h"

namespace camvora {

namespace {

constexpr int kOk = 200;
constexpr int kNotModified = 304;
constexpr std::size_t kValidatorLimitBytes = 256;

std::optional<Feed> KnownFeed(Store& store, ADDON_SERVICE service) {
    std::optional<Feed> known;
    store.Query([&](SQLite::Database& database) { known = FindFeed(database, service); });
    return known;
}

// What may stand for the answer when the server has nothing newer.
Feed FeedToAsk(Store& store, const UpdateSettings& settings, const FeedKey& key) {
    if (settings.conf.feedUrl.empty()) {
        throw UpdateFailure("no feed is set");
    }
    const std::string url = FeedAddress(settings.conf, settings.shortName + ".json");
    const auto known = KnownFeed(store, settings.service);
    if (known && known->url == url && known->keyId == key.Id()) {
        return *known;
    }
    Feed feed;
    feed.url = url;
    feed.keyId = key.Id();
    return feed;
}

// Last-Modified has whole seconds only: the entity tag is better.
httplib::Headers ConditionsFor(const Feed& known) {
    if (!known.etag.empty()) {
        return {{"If-None-Match", known.etag}};
    }
    if (!known.lastModified.empty()) {
        return {{"If-Modified-Since", known.lastModified}};
    }
    return {};
}

std::string Validator(const httplib::Response& response, const char* header) {
    const std::string value = response.get_header_value(header);
    return value.size() <= kValidatorLimitBytes ? value : "";
}

// Puts the index that the server has now into `feed`.
void FetchIndex(Feed& feed, std::chrono::milliseconds limit) {
    Feed fresh = feed;
    fresh.index.clear();
    bool isTooLarge = false;
    HttpGet get;
    get.url = feed.url;
    get.headers = ConditionsFor(feed);
    get.pace.period = limit;
    get.onHead = [&fresh](const httplib::Response& response) {
        fresh.etag = Validator(response, "ETag");
        fresh.lastModified = Validator(response, "Last-Modified");
        return response.status == kOk;
    };
    get.onBytes = [&fresh, &isTooLarge](const char* bytes, std::size_t sizeBytes) {
        isTooLarge = sizeBytes > kFeedIndexLimitBytes - fresh.index.size();
        if (!isTooLarge) {
            fresh.index.append(bytes, sizeBytes);
        }
        return !isTooLarge;
    };
    const HttpEnd end = Fetch(get);
    if (isTooLarge) {
        throw UpdateFailure("the index is too large");
    }
    if (!end.problem.empty()) {
        throw UpdateFailure("the feed cannot be read: " + end.problem);
    }
    if (end.status == kOk) {
        feed = fresh;
    } else if (end.status != kNotModified || get.headers.empty()) {
        throw UpdateFailure("the feed answers with status " + std::to_string(end.status));
    }
}

void Keep(Store& store, ADDON_SERVICE service, const Feed& feed) {
    bool isOlder = false;
    const bool isKept = store.Write([&](SQLite::Database& database) {
        const auto known = FindFeed(database, service);
        isOlder = known && known->keyId == feed.keyId && known->serial > feed.serial;
        if (!isOlder) {
            KeepFeed(database, service, feed);
        }
    });
    if (!isKept) {
        throw UpdateFailure("the database cannot be written");
    }
    if (isOlder) {
        throw UpdateFailure("the index is older than one that was seen before");
    }
}

CheckedRelease Checked(const std::optional<Release>& newest) {
    CheckedRelease checked;
    if (newest) {
        checked = {newest->version, newest->date, newest->notes, newest->sizeBytes, ""};
    }
    checked.checkedAt = UtcTimeText();
    return checked;
}

}  // namespace

std::optional<Release> CheckRelease(Store& store, const UpdateSettings& settings) {
    const FeedKey key(settings.conf.feedKeyFile);
    Feed feed = FeedToAsk(store, settings, key);
    FetchIndex(feed, settings.checkLimit);
    const FeedIndex index = ReadFeedIndex(feed.index, key, settings.shortName);
    feed.serial = index.serial;
    std::optional<Release> newest = ChooseRelease(index, settings.installedVersion, settings.mainVersion);
    feed.newest = Checked(newest);
    Keep(store, settings.service, feed);
    return newest;
}

}  // namespace camvora
