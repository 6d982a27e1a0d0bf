// The appliance as the commands see it: methods by name, answers as JSON.
#pragma once

#include "client/httpclient.h"

#include <json/value.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace client {

struct Failure;

struct Answer {
    Json::Value data;
    std::string requestId;  // empty when the appliance gave none
};

class Appliance {
public:
    //   server  the name of a recording server that is paired with the appliance: methods are called there;
    //           empty for the appliance's own
    explicit Appliance(HttpClient http, const std::string& server = "");

    // The same appliance with another limit for each request as a whole.
    Appliance Within(std::chrono::seconds timeLimit) const;

    // Calls `method` of the add-ons API with the object `params`. Throws Failure, with the request's log
    // lines when the appliance answered an error.
    Answer Ask(const std::string& method, const Json::Value& params) const;

    // The data of that answer. Throws as Ask does.
    Json::Value Call(const std::string& method, const Json::Value& params) const;

    // Sends the file as "Upload" wants it. Throws as Ask does, and as HttpClient::PostFile does.
    Json::Value Upload(const FormFile& file, const SentReceiver& sent) const;

    // Posts `body` to a page of the appliance, or reads or deletes what the page is about. Return the data of
    // the answer; `what` names it in failures. Throw as Ask does.
    Json::Value PostPage(const std::string& path, const Json::Value& body, const std::string& what) const;
    Json::Value GetPage(const std::string& path, const std::string& what) const;
    Json::Value DeletePage(const std::string& path, const std::multimap<std::string, std::string>& query,
                           const std::string& what) const;

    // What the appliance serves. Throws as Ask does.
    Json::Value Methods() const;

    // The log lines of a request, an array. Throws as Ask does.
    Json::Value Log(const std::string& requestId) const;

    // False when methods are called on a paired server, whose records, those of operations, programs,
    // releases and downloads, cannot be asked.
    bool HasRecords() const { return server_.empty(); }

    // The entries of the operation log with ids above `after`, oldest first and at most a thousand; the
    // newest without `after`. Throws as Ask does.
    Json::Value LogEntries(std::optional<Json::Int64> after) const;

    // The entries of the operation log that a request caused. Throws as Ask does.
    Json::Value LogEntriesOf(const std::string& requestId) const;

    // The newest operations, in the order of their begin and at most a thousand. Throws as Ask does.
    Json::Value Operations() const;

    // The operation of that number, or of the request with that id; null when there is none. Throw as Ask
    // does.
    Json::Value OperationOf(const std::string& number) const;
    Json::Value OperationOfRequest(const std::string& requestId) const;

    // The newest programs that the request has run, or that all have where it is empty, in the order of their
    // ends and at most a thousand. Throws as Ask does.
    Json::Value Programs(const std::string& requestId) const;

    // What the last checks have found, and the downloads, arrays. Throw as Ask does.
    Json::Value Releases() const;
    Json::Value Downloads() const;

    // Puts a request and, as far as they can be had, its log lines into `failure`.
    void AddRequest(Failure& failure, const std::string& requestId) const;

    // Passes on the stream of events as HttpClient::Listen does. Throws as that does, and Failure when the
    // appliance answered something else.
    void Listen(const std::string& lastEventId, const PieceReceiver& receive) const;

private:
    Json::Value LogEntries(const std::multimap<std::string, std::string>& query) const;
    Json::Value Operations(const std::multimap<std::string, std::string>& query) const;
    Json::Value OneOperation(const std::multimap<std::string, std::string>& query) const;
    Answer Checked(const HttpReply& reply, const std::string& what) const;

    HttpClient http_;
    std::string server_;
};

}  // namespace client
