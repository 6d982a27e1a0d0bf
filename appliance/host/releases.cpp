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

Reply ReplyWithReleases() {
    Json::Value data(Json::objectValue);
    data["releases"] = Json::Value(Json::arrayValue);
    for (const camvora::CheckedService& service : camvora::CheckedServices()) {
        data["releases"].append(ToJson(service));
    }
    return SuccessReply(data);
}

}  // namespace host
