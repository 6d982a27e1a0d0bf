// The appliance as the commands see it: methods by name, answers as JSON.
#pragma once

#include "client/httpclient.h"

#include <json/value.h>

#include <string>

namespace client {

class Appliance {
public:
    explicit Appliance(HttpClient http);

    // Calls `method` of the add-ons API with the object `params` and returns the answer's data. Throws
    // Failure, with the request's log lines when the appliance answered an error.
    Json::Value Call(const std::string& method, const Json::Value& params) const;

    // What the appliance serves. Throws as Call does.
    Json::Value Methods() const;

private:
    Json::Value Answer(const HttpReply& reply, const std::string& what) const;
    Json::Value LogLines(const std::string& requestId) const;

    HttpClient http_;
};

}  // namespace client
