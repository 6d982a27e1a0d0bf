#include "host/operations.h"

#include "host/decimal.h"
#include "host/frameworkerrors.h"

#include "libcamvora/operations.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

namespace host {

namespace {

constexpr int kLimit = 1000;
constexpr char kDuration[] = "durationMs";

struct OperationKind {
    const char* method;
    bool isDetached;
};

constexpr OperationKind kKinds[] = {
    {"Enable", true},   {"Disable", true},       {"Restart", false},        {"Update", false},
    {"Restore", false}, {"DownloadStart", true}, {"DownloadCancel", false}, {"GetPkgInfo", false},
};

const OperationKind* FindKind(const std::string& method) {
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [&method](const OperationKind& k) { return method == k.method; });
    return kind == std::end(kKinds) ? nullptr : kind;
}

Json::Value ToJson(const camvora::Operation& operation) {
    Json::Value entry(Json::objectValue);
    entry["id"] = Json::Int64{operation.id};
    entry["request"] = operation.requestId;
    entry["who"] = operation.who;
    entry["method"] = operation.method;
    entry["service"] = operation.service;
    entry["fromVersion"] = operation.fromVersion;
    entry["toVersion"] = operation.end.toVersion;
    entry["outcome"] = operation.end.outcome;
    entry["begin"] = operation.begin;
    entry[kDuration] = Json::Int64{operation.durationMs};
    entry["code"] = operation.end.code;
    entry["problem"] = operation.end.problem;
    return entry;
}

std::vector<camvora::Operation> OneOperation(long long id) {
    const std::optional<camvora::Operation> found = camvora::FindOperation(id);
    return found ? std::vector<camvora::Operation>{*found} : std::vector<camvora::Operation>{};
}

}  // namespace

bool IsOperation(const std::string& method) {
    return FindKind(method) != nullptr;
}

bool IsDetached(const std::string& method) {
    const OperationKind* kind = FindKind(method);
    return kind != nullptr && kind->isDetached;
}

Json::Value RunningOperations() {
    Json::Value running(Json::arrayValue);
    for (const camvora::Operation& operation : camvora::RunningOperations()) {
        running.append(ToJson(operation)).removeMember(kDuration);
    }
    return running;
}

Reply ReplyWithOperations(const httplib::Request& request) {
    const std::optional<long long> id = ParseDecimal(request.get_param_value("id"));
    if (request.has_param("id") && !id) {
        return ReplyFor(FrameworkError::kBadRequest, "the parameter \"id\" is not a number");
    }
    Json::Value data(Json::objectValue);
    data["operations"] = Json::Value(Json::arrayValue);
    for (const camvora::Operation& operation : id ? OneOperation(*id) : camvora::NewestOperations(kLimit)) {
        data["operations"].append(ToJson(operation));
    }
    return SuccessReply(data);
}

}  // namespace host
