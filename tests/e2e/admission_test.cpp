// Who may call: the owner by token, paired servers by proof, nobody else.
#include "e2e/appliance.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <memory>

namespace e2e {
namespace {

constexpr int kNotAdmitted = 105;
constexpr char kServerSecret[] = "secret-of-a-paired-server";
constexpr char kHostSecret[] = "secret-of-the-cms-host";
constexpr char kStartedSign[] = "target/@CVData/run/started";

std::string Proof(const std::string& secret, const std::string& timestamp) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
         reinterpret_cast<const unsigned char*>(timestamp.data()), timestamp.size(), digest.data(), &size);
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
        std::array<char, 3> hex{};
        (void)std::snprintf(hex.data(), hex.size(), "%02x", digest[i]);
        text += hex.data();
    }
    return text;
}

class AdmissionTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>();
        ASSERT_EQ(200, HttpCalls(appliance_->Stranger()).Get("/health").status);  // the database is there now
        SQLite::Database database(appliance_->PackagePath("target/@CVData/camvora.db"),
                                  SQLite::OPEN_READWRITE, 5000);
        SQLite::Statement insert(database,
                                 "INSERT INTO pairs(name, role, secret_in, secret_out) VALUES(?,?,?,'-')");
        for (const auto& [role, secret] :
             {std::pair("server", kServerSecret), std::pair("host", kHostSecret)}) {
            insert.bindNoCopy(1, "peer");
            insert.bindNoCopy(2, role);
            insert.bindNoCopy(3, secret);
            insert.exec();
            insert.reset();
        }
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls stranger_ = appliance_->Stranger();
};

std::unique_ptr<Appliance> AdmissionTest::appliance_;

TEST_F(AdmissionTest, TheTokenAdmits) {
    EXPECT_TRUE(appliance_->Owner().AddOns("List").Succeeded());
}

TEST_F(AdmissionTest, NoTokenOrAWrongOneIsRefusedByTheModule) {
    std::string longer = appliance_->Token() + "0";
    std::string other = appliance_->Token();
    other.back() = other.back() == '0' ? '1' : '0';
    for (const std::string& token : {std::string(), longer, other, std::string("x")}) {
        const Answer answer = HttpCalls(appliance_->Url(), token).AddOns("List");
        EXPECT_EQ(200, answer.status) << token;
        EXPECT_EQ(kNotAdmitted, answer.Code()) << token;
        EXPECT_TRUE(answer.Data().isNull());
    }
}

TEST_F(AdmissionTest, AnExceptionOnBehalfOfAStrangerIsARefusal) {
    const Answer answer = stranger_.AddOns("List", Param("isCrossSite", "x"));
    EXPECT_EQ(401, answer.status);
    EXPECT_EQ(1013, answer.Code());
}

TEST_F(AdmissionTest, LogAndEventsAreForTheOwnerOnly) {
    for (const char* path : {"/log?request=0123456789abcdef", "/events"}) {
        const Answer answer = stranger_.Get(path);
        EXPECT_EQ(401, answer.status) << path;
        EXPECT_EQ(1013, answer.Code()) << path;
    }
}

struct PairCase {
    const char* name;
    const char* client;
    const char* secret;
    int isCrossSite;
    int ageS;    // of the proof
    int shiftS;  // by which the timestamp sent differs from the one proved
    bool packageRuns;
    bool admitted;
};

const PairCase kPairCases[] = {
    {"paired_server", "NVR", kServerSecret, 0, 0, 0, true, true},
    {"proof_used_again_within_the_window", "REC_SERVER", kServerSecret, 0, 30, 0, true, true},
    {"proof_used_again_later", "NVR", kServerSecret, 0, 120, 0, true, false},
    {"proof_from_the_future", "NVR", kServerSecret, 0, -120, 0, true, false},
    {"timestamp_renewed", "NVR", kServerSecret, 0, 120, 120, true, false},
    {"wrong_secret", "NVR", "guessed", 0, 0, 0, true, false},
    {"no_secret", "NVR", "", 0, 0, 0, true, false},
    {"cms_host", "MV180RX", kHostSecret, 1, 0, 0, true, true},
    {"server_in_the_role_of_the_host", "NVR", kServerSecret, 1, 0, 0, true, false},
    {"host_in_the_role_of_a_server", "NVR", kHostSecret, 0, 0, 0, true, false},
    {"other_cross_site_value_asks_as_server", "NVR", kServerSecret, 2, 0, 0, true, true},
    {"unknown_client_type", "nvr", kServerSecret, 0, 0, 0, true, false},
    {"package_stopped", "NVR", kServerSecret, 0, 0, 0, false, false},
};

class PairTest : public AdmissionTest, public testing::WithParamInterface<PairCase> {
protected:
    void TearDown() override { std::ofstream(appliance_->PackagePath(kStartedSign)).close(); }
};

TEST_P(PairTest, IsAdmittedByProof) {
    const PairCase& c = GetParam();
    if (!c.packageRuns) {
        std::filesystem::remove(appliance_->PackagePath(kStartedSign));
    }
    const std::time_t proved = std::time(nullptr) - c.ageS;
    Json::Value params = Param("client", c.client);
    params["isCrossSite"] = c.isCrossSite;
    params["cookie"] = Proof(c.secret, std::to_string(proved));
    const httplib::Headers headers = {{"Cookie", "a=b; timestamp=" + std::to_string(proved + c.shiftS)}};
    const Answer answer = stranger_.AddOns("List", params, headers);
    EXPECT_EQ(c.admitted, answer.Succeeded());
    EXPECT_EQ(c.admitted ? 0 : kNotAdmitted, answer.Code());
}

INSTANTIATE_TEST_SUITE_P(All, PairTest, testing::ValuesIn(kPairCases),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace e2e
