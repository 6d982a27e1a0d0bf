#include "host/operations.h"

#include "host/decimal.h"
#include "host/frameworkerrors.h"

#include "interface/methodtable.h"
#include "libcamvora/operations.h"

#include <optional>
#include <vector>

namespace host {

namespace {

constexpr int kLimit = 1000;
constexpr char kDuration[] = "durationMs";

// Parameters of the page.
constexpr char kId[] = "id";
constexpr char kAfter[] = "after";
constexpr char kRequest[] = "request";

using interface::Effect;

Effect EffectOf(const std::string& method) {
    const interface::Method* known = interface::FindMethod(method);
    return known == nullptr ? Effect::kNone : known->effect;
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
    if (operation.end.outcome != camvora::kOperationLost) {
        entry[kDuration] = Json::Int64{operation.durationMs};
    }
    entry["code"] = operation.end.code;
    entry["problem"] = operation.end.problem;
    return entry;
}

template <class Key>
std::vector<camvora::Operation> OneOperation(const Key& key) {
    const std::optional<camvora::Operation> found = camvora::FindOperation(key);
    return found ? std::vector<camvora::Operation>{*found} : std::vector<camvora::Operation>{};
}

// `number` is the value of "id" or "after", if one of them is there.
std::vector<camvora::Operation> Wanted(const httplib::Request& request, std::optional<long long> number) {
    if (request.has_param(kRequest)) {
        return OneOperation(request.get_param_value(kRequest));
    }
    if (request.has_param(kId)) {
        return OneOperation(*number);
    }
    return camvora::OperationsAfter(number.value_or(camvora::LastOperationId() - kLimit), kLimit);
}

}  // namespace

bool IsOperation(const std::string& method) {
    return EffectOf(method) == Effect::kOperation || IsDetached(method);
}

bool IsDetached(const std::string& method) {
    return EffectOf(method) == Effect::kDetachedOperation;
}

Json::Value RunningOperations() {
    Json::Value running(Json::arrayValue);
    for (const camvora::Operation& operation : camvora::RunningOperations()) {
        running.append(ToJson(operation)).removeMember(kDuration);
    }
    return running;
}

Reply ReplyWithOperations(const httplib::Request& request) {
    const std::optional<long long> number =
        ParseDecimal(request.get_param_value(request.has_param(kId) ? kId : kAfter));
    const bool needsNumber = request.has_param(kId) || request.has_param(kAfter);
    if (needsNumber && !number) {
        return ReplyFor(FrameworkError::kBadRequest, "the parameter \"id\" or \"after\" is not a number");
    }
    Json::Value data(Json::objectValue);
    data["operations"] = Json::Value(Json::arrayValue);
    for (const camvora::Operation& operation : Wanted(request, number)) {
        data["operations"].append(ToJson(operation));
    }
    return SuccessReply(data);
}

}  // namespace host
