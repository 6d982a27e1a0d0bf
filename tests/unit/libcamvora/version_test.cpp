// The order of versions, and lists in texts.
#include "platform/files.h"
#include "platform/releases.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

namespace {

struct OrderCase {
    const char* name;
    const char* newer;
    const char* older;
};

const OrderCase kOrderCases[] = {
    {"numbers_not_text", "3.10", "3.9"},
    {"first_difference_decides", "3.2.0-1", "3.1.9-9"},
    {"more_pieces", "3.2.1", "3.2"},
    {"beyond_64_bits", "100000000000000000000", "99999999999999999999"},
    {"text_is_below_a_number", "1.0", "1.rc"},
    {"text_is_below_a_missing_piece", "1.0", "1.0-rc"},
    {"empty_piece_is_text", "1.0.1", "1..1"},
    {"empty_version", "0", ""},
    {"sign_is_no_number", "1.0", "1.+5"},
};

class VersionOrder : public testing::TestWithParam<OrderCase> {};

TEST_P(VersionOrder, Holds) {
    for (const bool allowEqual : {false, true}) {
        EXPECT_TRUE(AddonsUpdate::IsVersionNewer(GetParam().newer, GetParam().older, allowEqual));
        EXPECT_FALSE(AddonsUpdate::IsVersionNewer(GetParam().older, GetParam().newer, allowEqual));
    }
}

INSTANTIATE_TEST_SUITE_P(All, VersionOrder, testing::ValuesIn(kOrderCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(VersionOrder, EqualOnesCountWhenTheyMay) {
    for (const auto& [one, other] : {std::pair("2.1.0-0153", "2.1.0-153"), std::pair("1", "1.0-00"),
                                     std::pair("1.2", "1-2"), std::pair("x", "x"), std::pair("", "")}) {
        EXPECT_TRUE(AddonsUpdate::IsVersionNewer(one, other, true)) << one;
        EXPECT_FALSE(AddonsUpdate::IsVersionNewer(one, other, false)) << one;
    }
}

TEST(TextList, DropsEmptyElements) {
    using List = std::list<std::string>;
    EXPECT_EQ((List{"a", "b c"}), String2StrList("|a||b c|", "|"));
    EXPECT_EQ((List{"a", "b"}), String2StrList("a, b", ", "));
    EXPECT_EQ((List{"whole"}), String2StrList("whole", " "));
    EXPECT_EQ((List{"no separator"}), String2StrList("no separator", ""));
    EXPECT_EQ(List(), String2StrList("   ", " "));
    EXPECT_EQ(List(), String2StrList("", ""));
}

}  // namespace
