#include "libcamvora/pairproof.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using camvora::IsProofOfPair;
using camvora::PairProof;

constexpr std::time_t kNow = 1700000000;

TEST(PairProof, CountsForAMinute) {
    const std::vector<std::pair<std::string, bool>> kTimestamps = {
        {"1699999940", true},
        {"1699999939", false},
        {"1700000060", true},  // by a clock that is ahead
        {"1700000061", false},
        {" 1700000000", false},
        {"+1700000000", false},
        {"18446744073709551615", false},
        {"99999999999999999999", false},
        {std::string("1700000000\0", 11), false},
    };
    for (const auto& [timestamp, counts] : kTimestamps) {
        const std::string proof = PairProof("right", timestamp);
        EXPECT_EQ(counts, IsProofOfPair({"wrong", "right", ""}, proof, timestamp, kNow)) << timestamp;
    }
}

TEST(PairProof, OfAnEmptySecretNeverCounts) {
    EXPECT_FALSE(IsProofOfPair({""}, PairProof("", "1700000000"), "1700000000", kNow));
}

TEST(PairProof, IsComparedWhole) {
    const std::string proof = PairProof("right", "1700000000");
    std::string lastDigitWrong = proof;
    lastDigitWrong.back() = proof.back() == '0' ? '1' : '0';
    for (const std::string& wrong :
         {std::string(), lastDigitWrong, proof.substr(1), proof + "0", proof + std::string(1, '\0')}) {
        EXPECT_FALSE(IsProofOfPair({"right"}, wrong, "1700000000", kNow)) << wrong;
    }
}

}  // namespace
