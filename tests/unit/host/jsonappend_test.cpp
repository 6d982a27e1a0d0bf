// JSON in replies: the same as the library would write.
#include "host/jsonappend.h"

#include <gtest/gtest.h>
#include <json/writer.h>

#include <string>

namespace {

constexpr std::size_t kLong = 3 << 20;

struct JsonCase {
    const char* name;
    Json::Value value;
    bool isLong;  // and written without copies
};

Json::Value Around(const Json::Value& text) {
    Json::Value value(Json::objectValue);
    value["a"] = Json::Value(Json::arrayValue);
    value["b \"\xc3\xa4\n"].append(text);
    value["b \"\xc3\xa4\n"].append(Json::Value(Json::objectValue));
    value["b \"\xc3\xa4\n"][1]["c"] = 1.5;
    value["z"] = Json::UInt64{1} << 63;
    return value;
}

const JsonCase kJsonCases[] = {
    {"null", Json::Value(), false},
    {"short_text", Around("\x7f x"), false},
    {"long_text", Around(std::string(kLong, '~')), true},
    {"long_text_alone", std::string(kLong, ' '), true},
    {"long_text_with_quote_at_its_end", Around(std::string(kLong, 'x') + '"'), false},
    {"long_text_with_backslash", Around('\\' + std::string(kLong, 'x')), false},
    {"long_text_with_nul", Around(std::string(kLong, '\0')), false},
    {"long_text_with_delete", Around(std::string(kLong, '\x7f')), false},
    {"long_text_of_other_letters", Around(std::string(kLong, 'x') + "\xc3\xa4"), false},
};

TEST(JsonInReplies, IsWhatTheLibraryWrites) {
    Json::StreamWriterBuilder compact;
    compact["indentation"] = "";
    for (const JsonCase& c : kJsonCases) {
        std::string text = "before";
        host::AppendJson(text, c.value);
        EXPECT_TRUE("before" + Json::writeString(compact, c.value) == text) << c.name;
        EXPECT_TRUE(!c.isLong || text.capacity() < kLong + 10'000) << c.name;
    }
}

}  // namespace
