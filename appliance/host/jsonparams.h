// The parameters of a request, from its body.
#pragma once

#include "host/frameworkerrors.h"

#include <json/value.h>

#include <optional>
#include <string>

namespace host {

// Reads `text` as a JSON object into `params`; an empty text is an object without members. Returns the reply
// that says what is wrong with it, or nothing when `params` holds it. Duplicate members, text that is not
// UTF-8 and deep nesting are refused.
std::optional<Reply> ReadParams(const std::string& text, Json::Value& params);

}  // namespace host
