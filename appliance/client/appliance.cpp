#include "client/appliance.h"

#include "client/envelope.h"
#include "client/failure.h"
#include "client/jsontext.h"

#include <utility>

namespace client {
namespace {

constexpr char kApiPath[] = "/api/ORVA.Camvora.AddOns/v1/";

}  // namespace

Appliance::Appliance(HttpClient http) : http_(std::move(http)) {}

Json::Value Appliance::Call(const std::string& method, const Json::Value& params) const {
    return Answer(http_.Post(kApiPath + method, ToJson(params)), method);
}

Json::Value Appliance::Methods() const {
    return Answer(http_.Get("/api"), "The list of methods");
}

Json::Value Appliance::Answer(const HttpReply& reply, const std::string& what) const {
    try {
        return DataOf(reply, what);
    } catch (Failure& failure) {
        failure.requestId = reply.requestId;
        failure.log = LogLines(reply.requestId);
        throw;
    }
}

// A log that cannot be had must not hide the failure that it was to explain.
Json::Value Appliance::LogLines(const std::string& requestId) const {
    if (requestId.empty()) {
        return {};
    }
    try {
        const Json::Value data = DataOf(http_.Get("/log", {{"request", requestId}}), "The log");
        const Json::Value lines = Member(data, "lines");
        return lines.isArray() ? lines : Json::Value();
    } catch (const Failure&) {
        return {};
    }
}

}  // namespace client
