// One-time codes.
#include "host/onetimecodes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

namespace {

using host::OneTimeCodes;

constexpr char kWrong[] = "AAAA-AAAA-AAAA";

class Codes : public testing::Test {
protected:
    OneTimeCodes codes_;
    const OneTimeCodes::Clock::time_point start_ = OneTimeCodes::Clock::now();
};

TEST_F(Codes, AreForOneNameAndOneUse) {
    std::string code = codes_.Make("one");
    ASSERT_EQ(14U, code.size());
    EXPECT_EQ('-', code[4]);
    EXPECT_EQ('-', code[9]);
    codes_.Make("two");
    EXPECT_FALSE(codes_.Redeem(""));
    EXPECT_FALSE(codes_.Redeem(code.substr(0, 13)));
    std::transform(code.begin(), code.end(), code.begin(), [](unsigned char c) { return std::tolower(c); });
    code.erase(4, 1);
    EXPECT_EQ("one", codes_.Redeem(code));
    EXPECT_FALSE(codes_.Redeem(code));
}

TEST_F(Codes, EndAfterTenMinutesOrWithTheNext) {
    const std::string code = codes_.Make("one", start_);
    EXPECT_FALSE(codes_.Redeem(code, start_ + OneTimeCodes::kValidity));
    const std::string replaced = codes_.Make("one", start_);
    const std::string next = codes_.Make("one", start_);
    EXPECT_FALSE(codes_.Redeem(replaced, start_));
    EXPECT_EQ("one", codes_.Redeem(next, start_ + OneTimeCodes::kValidity - std::chrono::seconds(1)));
}

TEST_F(Codes, AreSixteenAtMost) {
    std::set<std::string> codes = {codes_.Make("first")};
    const std::string second = codes_.Make("second");
    for (int i = 0; i < 15; ++i) {
        codes.insert(codes_.Make(std::to_string(i)));
    }
    EXPECT_EQ(16U, codes.size());
    EXPECT_EQ("second", codes_.Redeem(second));
    const auto count = std::count_if(codes.begin(), codes.end(),
                                     [this](const std::string& code) { return codes_.Redeem(code); });
    EXPECT_EQ(15, count);
}

TEST_F(Codes, AllEndWithTheTenthWrongOne) {
    const std::string kept = codes_.Make("kept");
    const std::string lost = codes_.Make("lost");
    for (int i = 0; i < 9; ++i) {
        EXPECT_FALSE(codes_.Redeem(kWrong));
    }
    EXPECT_EQ("kept", codes_.Redeem(kept));
    EXPECT_FALSE(codes_.Redeem(kWrong));
    EXPECT_FALSE(codes_.Redeem(lost));
    const std::string later = codes_.Make("later");
    EXPECT_FALSE(codes_.Redeem(kWrong));
    EXPECT_EQ("later", codes_.Redeem(later));
}

}  // namespace
