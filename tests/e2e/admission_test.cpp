// Who may call: the owner by token, paired servers by proof, nobody else.
#include "e2e/appliance.h"
#include "e2e/proof.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <ctime>
#include <fstream>

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
    for (const char* path :
         {"/log?request=0123456789abcdef", "/operationlog", "/operations", "/appliance", "/events"}) {
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

TEST_F(AdmissionTest, APairedServerIsAdmittedByProof) {
    const std::filesystem::path started = appliance_->PackagePath("target/@CVData/run/started");
    for (const PairCase& c : kPairCases) {
        SCOPED_TRACE(c.name);
        std::ofstream(started).close();
        if (!c.packageRuns) {
            std::filesystem::remove(started);
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
}

}  // namespace
}  // namespace e2e
