#include "host/operationend.h"

#include "host/jsonparams.h"

#include "libcamvora/downloadstates.h"
#include "libcamvora/notifications.h"
#include "libcamvora/operations.h"
#include "platform/log.h"
#include "platform/services.h"

#include <algorithm>
#include <exception>
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

// A download that was cancelled is forgotten.
OperationEnd EndOfDownload(int service) {
    const std::vector<camvora::DownloadState> states = camvora::DownloadStates();
    const auto state =
        std::find_if(states.begin(), states.end(),
                     [service](const camvora::DownloadState& entry) { return entry.service == service; });
    if (state == states.end()) {
        return {camvora::kOperationCancelled, "", 0, ""};
    }
    return {state->status == kDownloadReady ? camvora::kOperationDone : camvora::kOperationFailed,
            state->version, 0, state->problem};
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
        return operation.method == "DownloadStart" ? EndOfDownload(operation.service)
                                                   : EndOfControl(operation.requestId);
    });
}

}  // namespace host
