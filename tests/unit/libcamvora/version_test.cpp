// The order of versions, and lists in texts.
#include "platform/files.h"
#include "platform/releases.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <utility>

namespace {

TEST(VersionOrder, Holds) {
    for (const auto& [newer, older] :
         {std::pair("3.10", "3.9"), std::pair("3.2.0-1", "3.1.9-9"), std::pair("3.2.1", "3.2"),
          std::pair("1.0", "1.rc"), std::pair("1.b", "1.a"), std::pair("1.0", "1.0-rc"),
          std::pair("1.0.1", "1..1"), std::pair("0", ""), std::pair("1.0", "1.+5"),
          std::pair("100000000000000000000", "99999999999999999999")}) {
        for (const bool allowEqual : {false, true}) {
            EXPECT_TRUE(AddonsUpdate::IsVersionNewer(newer, older, allowEqual)) << newer << " " << older;
            EXPECT_FALSE(AddonsUpdate::IsVersionNewer(older, newer, allowEqual)) << newer << " " << older;
        }
    }
}

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
