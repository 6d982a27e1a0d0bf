// Calls on a running host.
#pragma once

#include <httplib.h>
#include <json/value.h>

#include <string>

namespace e2e {

// What came back.
struct Answer {
    int status = 0;  // 0 when nothing did
    std::string requestId;
    Json::Value body;  // null when it is no JSON

    bool Succeeded() const { return body["success"].asBool(); }
    const Json::Value& Data() const { return Succeeded() ? body["data"] : body["error"]["data"]; }
    int Code() const { return body["error"]["code"].asInt(); }
    // The framework's sentence about an error.
    std::string Text() const { return Data().isObject() ? Data()["text"].asString() : ""; }
};

// Null when it is none.
Json::Value ParseJson(const std::string& text);

// The library's result in this form.
Answer ToAnswer(const httplib::Result& result);

// One client. Its connection stays open between calls.
class HttpCalls {
public:
    // A client of the host at `url` that shows `token`, or none when that is empty.
    HttpCalls(const std::string& url, const std::string& token);

    Answer Get(const std::string& path);
    Answer Post(const std::string& path, const std::string& body, const httplib::Headers& headers = {},
                const std::string& type = "application/json");

    // Calls a method of version 1 with parameters.
    Answer Call(const std::string& api, const std::string& method,
                const Json::Value& params = Json::Value(Json::objectValue),
                const httplib::Headers& headers = {});

    // Calls a method of the test module.
    Answer Test(const std::string& method, const Json::Value& params = Json::Value(Json::objectValue)) {
        return Call("TEST.Module", method, params);
    }
    // Calls a method of the real module.
    Answer AddOns(const std::string& method, const Json::Value& params = Json::Value(Json::objectValue),
                  const httplib::Headers& headers = {}) {
        return Call("ORVA.Camvora.AddOns", method, params, headers);
    }

    httplib::Client& Client() { return client_; }

private:
    httplib::Client client_;
};

// An object with one member.
Json::Value Param(const std::string& name, const Json::Value& value);

}  // namespace e2e
