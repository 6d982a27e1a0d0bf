#include "libcamvora/replytext.h"

#include "libcamvora/jsonobject.h"

#include <algorithm>
#include <cstddef>

namespace camvora {

namespace {

constexpr std::size_t kLongBytes = std::size_t{1} << 20;

// Where a text of the JSON document stands, without its quotes.
struct Span {
    std::size_t begin;
    std::size_t end;
};

std::size_t FindQuoteOrEscape(const std::string& json, std::size_t begin) {
    const auto from = json.begin() + static_cast<std::ptrdiff_t>(std::min(begin, json.size()));
    const auto found = std::find_if(from, json.end(), [](char c) { return c == '"' || c == '\\'; });
    return static_cast<std::size_t>(found - json.begin());
}

// The first long text without escapes.
std::optional<Span> FindLongText(const std::string& json) {
    std::size_t quote = json.find('"');
    while (quote != std::string::npos) {
        const std::size_t begin = quote + 1;
        std::size_t end = FindQuoteOrEscape(json, begin);
        if (end - begin > kLongBytes && end < json.size() && json[end] == '"') {
            return Span{begin, end};
        }
        while (end < json.size() && json[end] == '\\') {
            end = FindQuoteOrEscape(json, end + 2);
        }
        quote = json.find('"', end + 1);
    }
    return std::nullopt;
}

// The value that begins at `offset` of the document that `value` was read from.
// NOLINTNEXTLINE(misc-no-recursion): the parser limits the depth
Json::Value* FindValueAt(Json::Value& value, std::ptrdiff_t offset) {
    if (value.getOffsetStart() == offset) {
        return &value;
    }
    for (Json::Value& member : value) {
        if (Json::Value* found = FindValueAt(member, offset)) {
            return found;
        }
    }
    return nullptr;
}

}  // namespace

// The parser would copy a text twice. So it gets the document without the long one, which is put in its place
// afterwards.
std::optional<Json::Value> ParseReply(std::string text) {
    const std::optional<Span> cut = FindLongText(text);
    if (!cut) {
        return ParseJsonObject(text);
    }
    std::optional<Json::Value> object = ParseJsonObject(text.substr(0, cut->begin) + text.substr(cut->end));
    Json::Value* place = object ? FindValueAt(*object, static_cast<std::ptrdiff_t>(cut->begin) - 1) : nullptr;
    if (place == nullptr) {
        return std::nullopt;
    }
    *place = Json::Value(text.data() + cut->begin, text.data() + cut->end);
    return object;
}

}  // namespace camvora
