#include "host/operationend.h"

#include "host/jsonparams.h"

#include "libcamvora/downloadstates.h"
#include "libcamvora/notifications.h"
#include "libcamvora/operations.h"
#include "platform/log.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <vector>

namespace host {

namespace {

using camvora::OperationEnd;

// As downloads have them, see docs/api.md.
constexpr int kDownloadReady = 2;

std::string VersionAfter(const camvora::Operation& operation, const Json::Value& data) {
    if (operation.method == "Update" || operation.method == "Restore") {
        return camvora::InstalledVersion(operation.service);
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

bool WasCancelled(const camvora::Operation& download) {
    const std::vector<camvora::Operation> later =
        camvora::OperationsAfter(download.id, camvora::kOperationsKept);
    return std::any_of(later.begin(), later.end(), [&download](const camvora::Operation& operation) {
        return operation.service == download.service && operation.method == "DownloadCancel";
    });
}

// What is ready may be of an older download; a cancel is recorded before it kills one.
OperationEnd EndOfDownload(const camvora::Operation& operation) {
    const std::string& version = operation.end.toVersion;
    const auto download = EntryOf(camvora::DownloadStates(), operation.service);
    if (download && download->status == kDownloadReady && download->version == version) {
        return {camvora::kOperationDone, version, 0, ""};
    }
    if (WasCancelled(operation)) {
        return {camvora::kOperationCancelled, "", 0, ""};
    }
    return {camvora::kOperationFailed, version, 0, download ? download->problem : ""};
}

// Only a start or a stop that went well is notified.
OperationEnd EndOfControl(const std::string& requestId) {
    return {camvora::HasNotified(requestId) ? camvora::kOperationDone : camvora::kOperationFailed, "", 0, ""};
}

template <class Judge>
void Record(const std::string& requestId, const Judge& judge) {
    try {
        if (const std::optional<camvora::Operation> operation = camvora::FindOperation(requestId)) {
            camvora::EndOperation(requestId, judge(*operation));
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
        return operation.method == "DownloadStart" ? EndOfDownload(operation)
                                                   : EndOfControl(operation.requestId);
    });
}

}  // namespace host
