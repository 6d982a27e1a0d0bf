#include "host/releases.h"

#include "libcamvora/checkedreleases.h"

namespace host {

namespace {

Json::Value ToJson(const camvora::CheckedService& service) {
    Json::Value entry(Json::objectValue);
    entry["service"] = service.service;
    entry["version"] = service.newest.version;
    entry["date"] = service.newest.date;
    entry["notes"] = service.newest.notes;
    entry["size"] = Json::Int64{service.newest.sizeBytes};
    entry["checked"] = service.newest.checkedAt;
    return entry;
}

}  // namespace

Json::Value Releases() {
    Json::Value all(Json::arrayValue);
    for (const camvora::CheckedService& service : camvora::CheckedServices()) {
        all.append(ToJson(service));
    }
    return all;
}

Reply ReplyWithReleases() {
    Json::Value data(Json::objectValue);
    data["releases"] = Releases();
    return SuccessReply(data);
}

}  // namespace host
