// Who may call: the owner by token, paired servers by proof, nobody else.
#include "e2e/appliance.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <ctime>
#include <iomanip>
#include <sstream>

namespace e2e {
namespace {

constexpr int kNotAdmitted = 105;
constexpr char kPairs[] =
    "INSERT INTO pairs(name, role, secret_in, secret_out) VALUES"
    "('peer', 'server', 'secret-of-a-paired-server', '-'), ('peer', 'host', 'secret-of-the-cms-host', '-')";
constexpr char kServerSecret[] = "secret-of-a-paired-server";
constexpr char kHostSecret[] = "secret-of-the-cms-host";

class AdmissionTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start();
        ASSERT_EQ(200, appliance_->Owner().Get("/health").status);  // the database is there now
        SQLite::Database(appliance_->PackagePath("target/@CVData/camvora.db"), SQLite::OPEN_READWRITE, 5000)
            .exec(kPairs);
    }
};

TEST_F(AdmissionTest, TheTokenAdmits) {
    EXPECT_TRUE(owner_.AddOns("List").Succeeded());
}

TEST_F(AdmissionTest, NoTokenOrAWrongOneIsRefusedByTheModule) {
    std::string other = appliance_->Token();
    other.back() = other.back() == '0' ? '1' : '0';
    for (const std::string& token : {std::string(), appliance_->Token() + "0", other, std::string("x")}) {
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
    for (const char* path : {"/log?request=0123456789abcdef", "/operationlog", "/operations", "/programs",
                             "/downloads", "/releases", "/appliance", "/events"}) {
        const Answer answer = stranger_.Get(path);
        EXPECT_EQ(401, answer.status) << path;
        EXPECT_EQ(1013, answer.Code()) << path;
    }
}

// The proof with that secret for that time, made without the library under test.
std::string Proof(const std::string& secret, const std::string& timestamp) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
         reinterpret_cast<const unsigned char*>(timestamp.data()), timestamp.size(), digest.data(), &size);
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (unsigned i = 0; i < size; ++i) {
        text << std::setw(2) << int{digest[i]};
    }
    return text.str();
}

struct PairCase {
    const char* name;
    const char* secret;
    int isCrossSite;
    int ageS;  // of the proof
    bool admitted;
    bool isPackageStopped = false;
};

const PairCase kPairCases[] = {
    {"paired_server", kServerSecret, 0, 0, true},
    {"proof_used_again_within_the_window", kServerSecret, 0, 30, true},
    {"proof_used_again_later", kServerSecret, 0, 120, false},
    {"clock_that_is_ahead", kServerSecret, 0, -3600, false},
    {"wrong_secret", "guessed", 0, 0, false},
    {"cms_host", kHostSecret, 1, 0, true},
    {"server_in_the_role_of_the_host", kServerSecret, 1, 0, false},
    {"host_in_the_role_of_a_server", kHostSecret, 0, 0, false},
    {"package_stopped", kServerSecret, 0, 0, false, true},
};

TEST_F(AdmissionTest, APairedServerIsAdmittedByProof) {
    for (const PairCase& c : kPairCases) {
        SCOPED_TRACE(c.name);
        if (c.isPackageStopped) {
            std::filesystem::remove(appliance_->PackagePath("target/@CVData/run/started"));
        }
        const std::string proved = std::to_string(std::time(nullptr) - c.ageS);
        Json::Value params = Param("client", "NVR");
        params["isCrossSite"] = c.isCrossSite;
        params["cookie"] = Proof(c.secret, proved);
        const Answer answer = stranger_.AddOns("List", params, {{"Cookie", "a=b; timestamp=" + proved}});
        EXPECT_EQ(c.admitted, answer.Succeeded());
        EXPECT_EQ(c.admitted ? 0 : kNotAdmitted, answer.Code());
    }
}

}  // namespace
}  // namespace e2e
