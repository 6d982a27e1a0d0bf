#include "libcamvora/pairproof.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace {

using camvora::IsProofOfPair;
using camvora::PairProof;

constexpr std::time_t kNow = 1700000000;

TEST(PairProof, IsHmacSha256InLowerCaseHex) {
    // RFC 4231, test case 2.
    EXPECT_EQ("5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843",
              PairProof("Jefe", "what do ya want for nothing?"));
}

struct ProofCase {
    const char* name;
    std::vector<std::string> secrets;
    std::string timestamp;  // the proof is made with the secret "right" over this
    bool accepted;
};

const ProofCase kProofCases[] = {
    {"only_secret", {"right"}, "1700000000", true},
    {"last_of_three", {"wrong", "", "right"}, "1700000000", true},
    {"first_of_two", {"right", "wrong"}, "1700000000", true},
    {"wrong_secret", {"wrong"}, "1700000000", false},
    {"no_secret", {}, "1700000000", false},
    {"oldest_in_window", {"right"}, "1699999940", true},
    {"replayed_beyond_window", {"right"}, "1699999939", false},
    {"newest_in_window", {"right"}, "1700000060", true},
    {"from_the_future", {"right"}, "1700000061", false},
    {"empty", {"right"}, "", false},
    {"exponent", {"right"}, "17e8", false},
    {"leading_blank", {"right"}, " 1700000000", false},
    {"trailing_blank", {"right"}, "1700000000 ", false},
    {"plus_sign", {"right"}, "+1700000000", false},
    {"negative", {"right"}, "-1700000000", false},
    {"fraction", {"right"}, "1700000000.5", false},
    {"hexadecimal", {"right"}, "0x6553f100", false},
    {"beyond_64_bits", {"right"}, "99999999999999999999", false},
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
    std::string upperCase = proof;
    std::transform(proof.begin(), proof.end(), upperCase.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    std::string lastDigitWrong = proof;
    lastDigitWrong.back() = proof.back() == '0' ? '1' : '0';
    for (const std::string& wrong : {std::string(), std::string("cookie"), upperCase, lastDigitWrong,
                                     proof.substr(1), proof + "0", proof + std::string(1, '\0')}) {
        EXPECT_FALSE(IsProofOfPair({"right"}, wrong, "1700000000", kNow)) << wrong;
    }
}

}  // namespace
