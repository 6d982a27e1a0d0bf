#include "client/releases.h"

#include "client/appliance.h"
#include "client/jsontext.h"

namespace client {
namespace {

// Null when there is none.
Json::Value EntryOf(const Json::Value& list, const Service& service) {
    for (const Json::Value& entry : list) {
        if (Member(entry, "service") == Json::Value(service.number)) {
            return entry;
        }
    }
    return {};
}

}  // namespace

Json::Value ReleaseOf(const Appliance& host, const Service& service) {
    Json::Value release = host.HasRecords() ? EntryOf(host.Releases(), service) : Json::Value();
    return LeafText(Member(release, "version")).empty() ? Json::Value() : release;
}

Json::Value DownloadOf(const Appliance& host, const Service& service) {
    return host.HasRecords() ? EntryOf(host.Downloads(), service) : Json::Value();
}

}  // namespace client
