#include "libcamvora/pairproof.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using camvora::IsProofOfPair;
using camvora::PairProof;

constexpr std::time_t kNow = 1700000000;

struct ProofCase {
    const char* name;
    std::vector<std::string> secrets;
    std::string timestamp;  // the proof is made with the secret "right" over this
    bool accepted;
};

const ProofCase kProofCases[] = {
    {"last_of_three", {"wrong", "", "right"}, "1700000000", true},
    {"oldest_in_window", {"right"}, "1699999940", true},
    {"replayed_beyond_window", {"right"}, "1699999939", false},
    {"newest_in_window", {"right"}, "1700000060", true},
    {"from_the_future", {"right"}, "1700000061", false},
    {"leading_blank", {"right"}, " 1700000000", false},
    {"plus_sign", {"right"}, "+1700000000", false},
    {"largest_64_bits", {"right"}, "18446744073709551615", false},
    {"nul_inside", {"right"}, std::string("1700000000\0", 11), false},
};

class Proof : public testing::TestWithParam<ProofCase> {};

TEST_P(Proof, IsJudged) {
    const ProofCase& c = GetParam();
    EXPECT_EQ(c.accepted, IsProofOfPair(c.secrets, PairProof("right", c.timestamp), c.timestamp, kNow));
}

INSTANTIATE_TEST_SUITE_P(All, Proof, testing::ValuesIn(kProofCases),
                         [](const auto& proof) { return std::string(proof.param.name); });

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
