#include "host/operations.h"

#include "host/decimal.h"
#include "host/frameworkerrors.h"

#include "libcamvora/operationlog.h"

#include <algorithm>

namespace host {

namespace {

constexpr int kLimit = 1000;

Json::Value ToJson(const camvora::Operation& operation) {
    Json::Value entry(Json::objectValue);
    entry["id"] = Json::Int64{operation.id};
    entry["time"] = operation.time;
    entry["request"] = operation.requestId;
    entry["who"] = operation.who;
    entry["event"] = operation.event;
    entry["number"] = Json::Int64{operation.number};
    for (const std::string& text : operation.texts) {
        entry["texts"].append(text);
    }
    return entry;
}

}  // namespace

Reply ReplyWithOperations(const httplib::Request& request) {
    const std::string requestId = request.get_param_value("request");
    long long after = requestId.empty() ? std::max(camvora::LastOperationId() - kLimit, 0LL) : 0;
    if (request.has_param("after")) {
        const std::optional<long long> wanted = ParseDecimal(request.get_param_value("after"));
        if (!wanted) {
            return ReplyFor(FrameworkError::kBadRequest, "the parameter \"after\" is not a number");
        }
        after = *wanted;
    }
    Json::Value data(Json::objectValue);
    data["operations"] = Json::Value(Json::arrayValue);
    for (const camvora::Operation& operation : camvora::OperationsAfter(after, requestId, kLimit)) {
        data["operations"].append(ToJson(operation));
    }
    return SuccessReply(data);
}

}  // namespace host
