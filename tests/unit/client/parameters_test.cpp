#include "client/parameters.h"

#include "client/jsontext.h"

#include "failswith.h"

#include <gtest/gtest.h>

namespace client {
namespace {

struct ParametersCase {
    const char* name;
    std::vector<std::string> words;
    std::string json;
};

const std::string kDeep(2000, '[');

const std::vector<ParametersCase> kParametersCases = {
    {"none", {}, R"({})"},
    {"scalars", {"a=1", "b=true", "c=null", "d=-2.5"}, R"({"a":1,"b":true,"c":null,"d":-2.5})"},
    {"containers", {R"(a={"b":[1,"x"]})", "c=[]"}, R"({"a":{"b":[1,"x"]},"c":[]})"},
    {"quoted_text_is_json", {R"(a="1")"}, R"({"a":"1"})"},
    {"other_values_are_text",
     {"a=on", "b=3.2-12", "c=True", "d={x", "e="},
     R"({"a":"on","b":"3.2-12","c":"True","d":"{x","e":""})"},
    {"not_quite_numbers_are_text",
     {"a=007", "b=+1", "c=-", "d=1.", "e=NaN", "f=0x10", "g=1 2"},
     R"({"a":"007","b":"+1","c":"-","d":"1.","e":"NaN","f":"0x10","g":"1 2"})"},
    {"not_quite_json_is_text",
     {"a=[1,]", R"(b={"x":1,"x":2})", "c=1/**/", "d='x'"},
     R"({"a":"[1,]","b":"{\"x\":1,\"x\":2}","c":"1/**/","d":"'x'"})"},
    {"first_equals_sign_splits", {"a=b=c", "d==", "e=1=1"}, R"({"a":"b=c","d":"=","e":"1=1"})"},
    {"nested_too_deeply_is_text", {"a=" + kDeep}, R"({"a":")" + kDeep + R"("})"},
};

TEST(ParametersTest, BecomeAnObject) {
    for (const ParametersCase& row : kParametersCases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.json, ToJson(ParseParameters(row.words)));
    }
}

TEST(ParametersTest, RefusesWhatHasNoClearMeaning) {
    const std::vector<std::vector<std::string>> refused = {
        {"word"}, {"=1"}, {""}, {"a=1", "a=2"}, {"a=\xFF"}, {"\xC3=1"},
    };
    for (const std::vector<std::string>& words : refused) {
        EXPECT_THAT([&] { ParseParameters(words); }, FailsWith(ExitStatus::kUsage)) << words.back();
    }
}

}  // namespace
}  // namespace client
