#include "host/operationend.h"

#include "host/jsonparams.h"

#include "libcamvora/checkedreleases.h"
#include "libcamvora/downloadstates.h"
#include "libcamvora/notifications.h"
#include "libcamvora/operations.h"
#include "platform/log.h"
#include "platform/services.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <optional>
#include <vector>

namespace host {

namespace {

using camvora::OperationEnd;

// As downloads have them, see docs/api.md.
constexpr int kDownloadReady = 2;

std::string InstalledVersion(int service) {
    return GetServiceInfo(static_cast<ADDON_SERVICE>(service))["version"].asString();
}

std::string VersionAfter(const camvora::Operation& operation, const Json::Value& data) {
    if (operation.method == "Update" || operation.method == "Restore") {
        return InstalledVersion(operation.service);
    }
    const bool isInspection = operation.method == "GetPkgInfo" && data.isObject();
    return isInspection ? data.get("version", "").asString() : "";
}

OperationEnd EndOf(const camvora::Operation& operation, const Reply& reply) {
    Json::Value answer;
    (void)ReadParams(reply.body, answer);
    if (!answer["success"].asBool()) {
        const Json::Value& error = answer["error"];
        const Json::Value& data = error["data"];
        const Json::Value text = data.isObject() ? data["text"] : Json::Value();
        return {camvora::kOperationFailed, "", error["code"].asInt(), text.isString() ? text.asString() : ""};
    }
    return {camvora::kOperationDone, VersionAfter(operation, answer["data"]), 0, ""};
}

// The entry of the service; nothing when it has none.
template <class Entry>
std::optional<Entry> EntryOf(const std::vector<Entry>& entries, int service) {
    const auto entry = std::find_if(entries.begin(), entries.end(),
                                    [service](const Entry& e) { return e.service == service; });
    return entry == entries.end() ? std::nullopt : std::make_optional(*entry);
}

// A download that was cancelled is forgotten; an older release that was ready before it is there again.
OperationEnd EndOfDownload(int service) {
    const auto download = EntryOf(camvora::DownloadStates(), service);
    const auto checked = EntryOf(camvora::CheckedServices(), service);
    const bool isOlder = download && checked && download->version != checked->newest.version;
    if (!download || isOlder) {
        return {camvora::kOperationCancelled, "", 0, ""};
    }
    return {download->status == kDownloadReady ? camvora::kOperationDone : camvora::kOperationFailed,
            download->version, 0, download->problem};
}

// Only a start or a stop that went well is notified.
OperationEnd EndOfControl(const std::string& requestId) {
    return {camvora::HasNotified(requestId) ? camvora::kOperationDone : camvora::kOperationFailed, "", 0, ""};
}

// A cancel kills the download before it forgets it. Who looks in between takes it for one that has failed.
void CorrectDownloads(const camvora::Operation& operation, const OperationEnd& end) {
    if (operation.method == "DownloadCancel" && end.outcome == camvora::kOperationDone) {
        camvora::CancelDownloadsSince(operation.begin, operation.service);
    }
}

template <class Judge>
void Record(const std::string& requestId, const Judge& judge) {
    static std::mutex oneAtATime;  // or a correction would come before the record
    const std::lock_guard<std::mutex> lock(oneAtATime);
    try {
        if (const std::optional<camvora::Operation> operation = camvora::FindOperation(requestId)) {
            const OperationEnd end = judge(*operation);
            camvora::EndOperation(requestId, end);
            CorrectDownloads(*operation, end);
        }
    } catch (const std::exception& error) {
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Failed to record an operation's end: %s\n",
                 error.what());
    }
}

}  // namespace

void RecordAnswered(const std::string& requestId, const Reply& reply) {
    Record(requestId, [&reply](const camvora::Operation& operation) { return EndOf(operation, reply); });
}

void RecordOutcome(const std::string& requestId) {
    Record(requestId, [](const camvora::Operation& operation) {
        return operation.method == "DownloadStart" ? EndOfDownload(operation.service)
                                                   : EndOfControl(operation.requestId);
    });
}

}  // namespace host
