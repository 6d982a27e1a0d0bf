// The framework's standard answer.
#pragma once

#include <json/value.h>

#include <string>

namespace host {

// An HTTP status and the JSON text that goes with it.
struct Reply {
    int httpStatus = 200;
    std::string body;
};

// {"success":true,"data":...}
Reply SuccessReply(const Json::Value& data);

// {"success":false,"error":{"code":...,"data":...}}
Reply ErrorReply(int httpStatus, int code, const Json::Value& data);

// True for what SuccessReply made.
bool IsSuccess(const Reply& reply);

}  // namespace host
