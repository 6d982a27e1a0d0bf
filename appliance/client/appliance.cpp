#include "client/appliance.h"

#include "client/envelope.h"
#include "client/failure.h"
#include "client/jsontext.h"

#include <utility>

namespace client {
namespace {

constexpr char kApiPath[] = "/api/ORVA.Camvora.AddOns/v1/";

// The member `name` of an answer's data, which is a list. `what` was asked for.
Json::Value ListIn(const Json::Value& data, const char* name, const std::string& what) {
    Json::Value list = Member(data, name);
    if (!list.isArray()) {
        throw Failure(ExitStatus::kFailed, what + " failed: the answer holds no " + name);
    }
    return list;
}

}  // namespace

Appliance::Appliance(HttpClient http, const std::string& server) : http_(std::move(http)), server_(server) {}

Appliance Appliance::Within(std::chrono::seconds timeLimit) const {
    return Appliance(http_.Within(timeLimit), server_);
}

Answer Appliance::Ask(const std::string& method, const Json::Value& params) const {
    const std::string place = server_.empty() ? "" : "/servers/" + server_;
    return Checked(http_.Post(place + kApiPath + method, ToJson(params)), method);
}

Json::Value Appliance::Call(const std::string& method, const Json::Value& params) const {
    return Ask(method, params).data;
}

Json::Value Appliance::Upload(const FormFile& file, const SentReceiver& sent) const {
    constexpr char kMethod[] = "Upload";
    return Checked(http_.PostFile(std::string(kApiPath) + kMethod, file, sent), kMethod).data;
}

Json::Value Appliance::PostPage(const std::string& path, const Json::Value& body,
                                const std::string& what) const {
    return Checked(http_.Post(path, ToJson(body)), what).data;
}

Json::Value Appliance::GetPage(const std::string& path, const std::string& what) const {
    return Checked(http_.Get(path), what).data;
}

Json::Value Appliance::DeletePage(const std::string& path,
                                  const std::multimap<std::string, std::string>& query,
                                  const std::string& what) const {
    return Checked(http_.Delete(path, query), what).data;
}

Json::Value Appliance::Methods() const {
    return GetPage("/api", "The list of methods");
}

Json::Value Appliance::Log(const std::string& requestId) const {
    return ListIn(DataOf(http_.Get("/log", {{"request", requestId}}), "The log"), "lines", "The log");
}

Json::Value Appliance::LogEntries(std::optional<Json::Int64> after) const {
    using Query = std::multimap<std::string, std::string>;
    return LogEntries(after ? Query{{"after", std::to_string(*after)}} : Query{});
}

Json::Value Appliance::LogEntriesOf(const std::string& requestId) const {
    return LogEntries({{"request", requestId}});
}

Json::Value Appliance::LogEntries(const std::multimap<std::string, std::string>& query) const {
    constexpr char kWhat[] = "The operation log";
    return ListIn(Checked(http_.Get("/operationlog", query), kWhat).data, "entries", kWhat);
}

Json::Value Appliance::Operations() const {
    return Operations(std::multimap<std::string, std::string>{});
}

Json::Value Appliance::OperationOf(const std::string& number) const {
    return OneOperation({{"id", number}});
}

Json::Value Appliance::OperationOfRequest(const std::string& requestId) const {
    return OneOperation({{"request", requestId}});
}

Json::Value Appliance::OneOperation(const std::multimap<std::string, std::string>& query) const {
    const Json::Value operations = Operations(query);
    return operations.empty() ? Json::Value() : operations[0];
}

Json::Value Appliance::Operations(const std::multimap<std::string, std::string>& query) const {
    constexpr char kWhat[] = "The list of operations";
    return ListIn(Checked(http_.Get("/operations", query), kWhat).data, "operations", kWhat);
}

Json::Value Appliance::Programs(const std::string& requestId) const {
    using Query = std::multimap<std::string, std::string>;
    constexpr char kWhat[] = "The record of programs";
    const Query query = requestId.empty() ? Query{} : Query{{"request", requestId}};
    return ListIn(Checked(http_.Get("/programs", query), kWhat).data, "programs", kWhat);
}

Json::Value Appliance::Releases() const {
    constexpr char kWhat[] = "The record of releases";
    return ListIn(GetPage("/releases", kWhat), "releases", kWhat);
}

Json::Value Appliance::Downloads() const {
    constexpr char kWhat[] = "The record of downloads";
    return ListIn(GetPage("/downloads", kWhat), "downloads", kWhat);
}

void Appliance::AddRequest(Failure& failure, const std::string& requestId) const {
    if (requestId.empty()) {
        return;
    }
    failure.requestId = requestId;
    try {
        failure.log = Log(requestId);
    } catch (const Failure&) {  // must not hide the failure that the log was to explain
    }
}

void Appliance::Listen(const std::string& lastEventId, const PieceReceiver& receive) const {
    const HttpReply reply = http_.Listen("/events", lastEventId, receive);
    if (!reply.isStream) {
        (void)Checked(reply, "The stream of events");
    }
}

Answer Appliance::Checked(const HttpReply& reply, const std::string& what) const {
    try {
        return {DataOf(reply, what), reply.requestId};
    } catch (Failure& failure) {
        AddRequest(failure, reply.requestId);
        throw;
    }
}

}  // namespace client
