#include "client/operationrecord.h"

#include "client/appliance.h"
#include "client/failure.h"
#include "client/jsontext.h"
#include "client/plainwords.h"
#include "client/services.h"

#include <algorithm>

namespace client {
namespace {

constexpr std::size_t kRequestIdSize = 16;

// The id of a request may consist of digits, too.
bool IsNumber(const std::string& id) {
    return !id.empty() && id.size() < kRequestIdSize &&
           std::all_of(id.begin(), id.end(), [](char byte) { return byte >= '0' && byte <= '9'; });
}

}  // namespace

std::map<int, std::string> ServiceNames(const Appliance& host) {
    std::map<int, std::string> names;
    try {
        for (const Service& service : ServicesIn(host.Call("List", Json::objectValue))) {
            names[service.number] = service.shortName;
        }
    } catch (const Failure&) {  // numbers have to do
        names.clear();
    }
    return names;
}

Json::Value FindOperation(const Appliance& host, const std::string& id) {
    Json::Value operation = IsNumber(id) ? host.OperationOf(id) : host.OperationOfRequest(id);
    if (operation.isNull()) {
        throw Failure(
            ExitStatus::kNotFound,
            "There is no operation " + id + ", or it is too old. \"camvoractl operations\" shows the newest");
    }
    return operation;
}

bool IsRunning(const Json::Value& operation) {
    return Member(operation, "outcome") == Json::Value("running");
}

std::string OperationName(const Json::Value& operation, const std::map<int, std::string>& names) {
    const Json::Value number = Member(operation, "service");
    const auto name = names.find(number.isInt() ? number.asInt() : -1);
    return LeafText(Member(operation, "method")) + " " +
           (name == names.end() ? "service " + LeafText(number) : name->second);
}

std::string OperationVersions(const Json::Value& operation) {
    const std::string from = LeafText(Member(operation, "fromVersion"));
    const std::string to = LeafText(Member(operation, "toVersion"));
    if (from.empty() || to.empty() || from == to) {
        return from.empty() ? to : from;
    }
    return from + " -> " + to;
}

std::string OperationDuration(const Json::Value& operation) {
    const Json::Value durationMs = Member(operation, "durationMs");
    return durationMs.isInt64() ? DurationWords(std::chrono::milliseconds(durationMs.asInt64())) : "";
}

std::string OutcomeWords(const Json::Value& operation) {
    const std::string problem = LeafText(Member(operation, "problem"));
    return LeafText(Member(operation, "outcome")) + (problem.empty() ? "" : ": " + problem);
}

Colour OutcomeColour(const Json::Value& operation) {
    const Json::Value outcome = Member(operation, "outcome");
    if (IsRunning(operation)) {
        return Colour::kYellow;
    }
    return outcome == Json::Value("done") ? Colour::kGreen : Colour::kRed;
}

}  // namespace client
