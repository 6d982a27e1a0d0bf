// What a test gives the web API framework, and what comes back.
#pragma once

#include "fake/journal.h"
#include "platform/webapi.h"

#include <map>
#include <string>

namespace ORVA {

struct RequestContent {
    bool isAuthorized;
    std::string method;
    Json::Value params;  // an object
    std::map<std::string, std::string> cookies;
    Json::Value form = {};  // null where the request is no upload, else its fields
    Json::Value files = {};
};

// The answer as its line in the journal ("SetError 105 null"); empty while there is none.
struct ResponseContent {
    std::string answer;
};

}  // namespace ORVA

namespace fake {

// A request for `method`, its parameters as JSON text, from a caller whom the framework has authorised.
ORVA::RequestContent Authorized(const std::string& method, const std::string& params = "{}");

// The same from any other caller.
ORVA::RequestContent Unauthorized(const std::string& method, const std::string& params,
                                  const std::map<std::string, std::string>& cookies = {});

// An upload of a form: its ordinary fields and, as the framework gives them, the members for its files.
ORVA::RequestContent Upload(const std::string& form, const std::string& files);

using Handler = void (*)(ORVA::APIRequest*, ORVA::APIResponse*);

// Hands the request to `handler`, as the framework does, and returns its answer.
std::string Serve(Handler handler, const ORVA::RequestContent& request);

// The calls with which an authorised request begins, before its method reads a parameter.
Steps Admission();

}  // namespace fake
