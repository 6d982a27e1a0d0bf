// JSON as it stands in replies.
#pragma once

#include <json/value.h>

#include <string>

namespace host {

// Appends `value` to `text`: on one line, without blanks, in ASCII. A long text that needs no escapes, as a
// file in base64, goes there without a copy in between, with little room to spare.
void AppendJson(std::string& text, const Json::Value& value);

}  // namespace host
