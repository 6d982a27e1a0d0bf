#include "host/downloads.h"

#include "libcamvora/downloadstates.h"

namespace host {

namespace {

Json::Value ToJson(const camvora::DownloadState& download) {
    Json::Value entry(Json::objectValue);
    entry["service"] = download.service;
    entry["version"] = download.version;
    entry["status"] = download.status;
    entry["bytes"] = Json::Int64{download.bytes};
    entry["size"] = Json::Int64{download.sizeBytes};
    entry["problem"] = download.problem;
    return entry;
}

}  // namespace

Json::Value Downloads() {
    Json::Value all(Json::arrayValue);
    for (const camvora::DownloadState& download : camvora::DownloadStates()) {
        all.append(ToJson(download));
    }
    return all;
}

Reply ReplyWithDownloads() {
    Json::Value data(Json::objectValue);
    data["downloads"] = Downloads();
    return SuccessReply(data);
}

}  // namespace host
