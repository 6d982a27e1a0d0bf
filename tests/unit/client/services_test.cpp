#include "client/services.h"

#include "client/jsontext.h"

#include "failswith.h"

#include <gtest/gtest.h>

namespace client {
namespace {

const std::vector<Service> kServices = {
    {1, "device_pack"}, {2, "cms"}, {3, "service3"}, {4, "service4"}, {6, "local_display"},
};

struct TypoCase {
    const char* name;
    const char* typed;
    const char* answer;
};

const TypoCase kTypoCases[] = {
    {"one_letter_missing", "device_pak", "Did you mean \"device_pack\"?"},
    {"two_letters_swapped", "csm", "Did you mean \"cms\"?"},
    {"other_separator", "local-display", "Did you mean \"local_display\"?"},
    {"capitals", "CMS", "Did you mean \"cms\"?"},
    {"only_the_beginning", "loc", "Did you mean \"local_display\"?"},
    {"several_as_near", "service9", "Did you mean \"service3\" or \"service4\"?"},
    {"nothing_near", "printer", "\"camvoractl list\" shows all"},
    {"short_and_far", "xyz", "\"camvoractl list\" shows all"},
    {"empty", "", "\"camvoractl list\" shows all"},
};

TEST(TypoTest, IsNotFoundWithASuggestion) {
    for (const TypoCase& row : kTypoCases) {
        SCOPED_TRACE(row.name);
        const std::string text = "There is no service \"" + std::string(row.typed) + "\". " + row.answer;
        EXPECT_THAT([&] { FindByName(kServices, row.typed); }, FailsWith(ExitStatus::kNotFound, text));
    }
}

TEST(ServicesTest, PassesOverEntriesOfAnotherForm) {
    Json::Value data;
    ASSERT_TRUE(ParseJson(R"({"list":[1, "x", {}, {"service":"1","info":{"shortName":"a"}},
        {"service":2,"info":[]}, {"service":3,"info":{"shortName":4}},
        {"service":5,"info":{"shortName":"b","more":{}}}]})",
                          data));
    const std::vector<Service> services = ServicesIn(data);
    ASSERT_EQ(1U, services.size());
    EXPECT_EQ(5, services[0].number);
    EXPECT_EQ("b", services[0].shortName);
}

}  // namespace
}  // namespace client
