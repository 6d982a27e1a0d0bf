#include "host/jsonappend.h"

#include <json/writer.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <sstream>
#include <string_view>

namespace host {

namespace {

constexpr std::size_t kLongBytes = std::size_t{1} << 20;
constexpr std::size_t kRoomBytes = std::size_t{4} << 10;  // for what follows a long text

std::unique_ptr<Json::StreamWriter> CompactWriter() {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

bool IsPlain(char c) {
    return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

// The text that `value` is when it is a long one without escapes; else empty.
std::string_view LongTextIn(const Json::Value& value) {
    const char* begin = nullptr;
    const char* end = nullptr;
    if (!value.isString() || !value.getString(&begin, &end)) {
        return {};
    }
    const std::string_view text(begin, static_cast<std::size_t>(end - begin));
    const bool isLong = text.size() > kLongBytes && std::all_of(text.begin(), text.end(), IsPlain);
    return isLong ? text : std::string_view();
}

bool HoldsLongText(const Json::Value& value) {
    return !LongTextIn(value).empty() || std::any_of(value.begin(), value.end(), HoldsLongText);
}

// By the library, which copies texts several times.
void AppendByWriter(std::string& text, const Json::Value& value) {
    thread_local const std::unique_ptr<Json::StreamWriter> writer = CompactWriter();
    std::ostringstream stream;
    writer->write(value, &stream);
    text += stream.str();
}

// NOLINTNEXTLINE(misc-no-recursion): the values are nested no deeper than the handler built them
void AppendMembers(std::string& text, const Json::Value& value) {
    const char* separator = "";
    for (auto member = value.begin(); member != value.end(); ++member) {
        text += separator;
        separator = ",";
        if (value.isObject()) {
            AppendByWriter(text, member.key());
            text += ':';
        }
        AppendJson(text, *member);
    }
}

}  // namespace

// NOLINTNEXTLINE(misc-no-recursion)
void AppendJson(std::string& text, const Json::Value& value) {
    const std::string_view longText = LongTextIn(value);
    if (!longText.empty()) {
        text.reserve(text.size() + longText.size() + kRoomBytes);
        text += '"';
        text += longText;
        text += '"';
    } else if (HoldsLongText(value)) {
        text += value.isObject() ? '{' : '[';
        AppendMembers(text, value);
        text += value.isObject() ? '}' : ']';
    } else {
        AppendByWriter(text, value);
    }
}

}  // namespace host
