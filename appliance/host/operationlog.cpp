#include "host/operationlog.h"

#include "host/decimal.h"
#include "host/frameworkerrors.h"

#include "libcamvora/operationlog.h"

#include <algorithm>

namespace host {

namespace {

constexpr int kEntriesLimit = 1000;

Json::Value ToJson(const camvora::LogEntry& entry) {
    Json::Value data(Json::objectValue);
    data["id"] = Json::Int64{entry.id};
    data["time"] = entry.time;
    data["request"] = entry.requestId;
    data["who"] = entry.who;
    data["event"] = entry.event;
    data["number"] = Json::Int64{entry.number};
    for (const std::string& text : entry.texts) {
        data["texts"].append(text);
    }
    return data;
}

}  // namespace

Reply ReplyWithOperationLog(const httplib::Request& request) {
    const std::string requestId = request.get_param_value("request");
    long long after = requestId.empty() ? std::max(camvora::LastLogEntryId() - kEntriesLimit, 0LL) : 0;
    if (request.has_param("after")) {
        const std::optional<long long> wanted = ParseDecimal(request.get_param_value("after"));
        if (!wanted) {
            return ReplyFor(FrameworkError::kBadRequest, "the parameter \"after\" is not a number");
        }
        after = *wanted;
    }
    Json::Value data(Json::objectValue);
    data["entries"] = Json::Value(Json::arrayValue);
    for (const camvora::LogEntry& entry : camvora::LogEntriesAfter(after, requestId, kEntriesLimit)) {
        data["entries"].append(ToJson(entry));
    }
    return SuccessReply(data);
}

}  // namespace host
