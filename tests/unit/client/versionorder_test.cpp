#include "client/versionorder.h"

#include <gtest/gtest.h>

namespace client {
namespace {

struct OrderCase {
    const char* name;
    const char* lower;
    const char* higher;  // the same text where both are equal
};

const OrderCase kOrderCases[] = {
    {"numbers_not_text", "3.9", "3.10"},
    {"first_difference_counts", "2.9-9", "3.0-0"},
    {"missing_piece_is_zero", "3.2", "3.2-1"},
    {"text_below_number", "3.2-beta", "3.2-0"},
    {"text_below_missing", "3.2-beta", "3.2"},
    {"text_as_text", "3.alpha", "3.beta"},
    {"longer_than_any_integer", "1.99999999999999999999", "1.100000000000000000000"},
    {"nothing_below_zero", "", "0"},
    {"empty_piece_is_no_number", "1..2", "1.0.2"},
    {"sign_is_no_number", "1.+5", "1.0"},
};

TEST(VersionOrderTest, HoldsBothWays) {
    for (const OrderCase& row : kOrderCases) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(IsAtLeast(row.higher, row.lower));
        EXPECT_FALSE(IsAtLeast(row.lower, row.higher));
    }
}

TEST(VersionEqualTest, CountsAsReached) {
    EXPECT_TRUE(IsAtLeast("3.2.1-0450", "3.2.1-450"));
    EXPECT_TRUE(IsAtLeast("3.2", "3.2.0-0"));
    EXPECT_TRUE(IsAtLeast("3.2.0-0", "3.2"));
}

}  // namespace
}  // namespace client
