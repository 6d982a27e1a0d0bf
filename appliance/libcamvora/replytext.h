// Replies of other servers, which may be big.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>

namespace camvora {

// The JSON object that `text` is; nothing when it is none. A text of more than a mebibyte in it, when it
// stands there without escapes, is copied once and no more: with `text`, which is used up, there are never
// more than two of it.
std::optional<Json::Value> ParseReply(std::string text);

}  // namespace camvora
