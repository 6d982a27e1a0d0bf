// The standard object in which the appliance puts every answer.
#pragma once

#include "client/httpclient.h"

#include <json/value.h>

#include <string>

namespace client {

// The data of a successful answer.
//   what    names the request in the text of a failure, as in "GetInfo"
//   throws  Failure: with the error that the appliance answered; by the HTTP status when an error came from
//           something else on the way; kFailed when a reply is not of the appliance's form
Json::Value DataOf(const HttpReply& reply, const std::string& what);

}  // namespace client
