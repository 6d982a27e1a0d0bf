// JSON as text, and the harmless reading of JSON that others wrote: nothing here throws on a wrong type.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace client {

// One value that is neither a filled object nor a filled array.
struct Leaf {
    std::string path;  // as in "list[0].info.name"; "data" for a value that stands alone
    std::string text;
};

// Reads exactly one JSON document. Returns false, with `value` undefined, when `text` is anything else.
[[nodiscard]] bool ParseJson(const std::string& text, Json::Value& value);

// `value` on one line of ASCII, without a line end.
std::string ToJson(const Json::Value& value);

// The member `name` of `object`; null when there is none or `object` is no object.
Json::Value Member(const Json::Value& object, const char* name);

// A text as it is, null as an empty text, everything else as JSON.
std::string LeafText(const Json::Value& value);

// All leaves of `value`, depth first, members by name.
std::vector<Leaf> Leaves(const Json::Value& value);

}  // namespace client
