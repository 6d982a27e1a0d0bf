// A CMS host and a recording server that are paired, and packages that move from the one to the other.
#include "e2e/appliance.h"
#include "e2e/ctl.h"
#include "e2e/packages.h"
#include "e2e/processes.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <json/writer.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr char kData[] = "target/@CVData";
constexpr char kRelay[] = "/servers/recorder/api/ORVA.Camvora.AddOns/v1/";

std::string SecretOf(const Appliance& appliance, const std::string& column) {
    return SQLite::Database(appliance.PackagePath(std::string(kData) + "/camvora.db"), SQLite::OPEN_READWRITE,
                            5000)
        .execAndGet("SELECT " + column + " FROM pairs")
        .getString();
}

Answer GetPkgInfo(const Appliance& host, const Json::Value& params) {
    return host.Owner().Post(std::string(kRelay) + "GetPkgInfo", params.toStyledString());
}

std::string FetchedBlob(const Appliance& recorder, const std::string& service) {
    return ReadFile(recorder.PackagePath("target/cv_addOns_" + service + "_host/" + service + "/blob"));
}

class PairTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        host_ = std::make_unique<Appliance>();
        recorder_ = std::make_unique<Appliance>();
    }
    static void TearDownTestSuite() {
        host_.reset();
        recorder_.reset();
    }
    void SetUp() override { Pair(*host_, *recorder_); }

    // That the package can be fetched now.
    static void ExpectFetch(const Json::Value& params) {
        const Answer answer = GetPkgInfo(*host_, params);
        EXPECT_TRUE(answer.Succeeded()) << answer.body << recorder_->Log();
        EXPECT_EQ(0U, UploadCount(*host_));
        EXPECT_EQ(0U, UploadCount(*recorder_));
    }

    // That the package cannot be fetched, and that nothing of it is left.
    static void ExpectNoFetch(const Answer& answer) {
        EXPECT_EQ(200, answer.status) << answer.body;
        EXPECT_EQ(400, answer.Code()) << answer.body;
        EXPECT_EQ("invalid_file", answer.Data()["errinfo"]["key"].asString());
        EXPECT_EQ(0U, UploadCount(*recorder_));
    }

    inline static std::unique_ptr<Appliance> host_;
    inline static std::unique_ptr<Appliance> recorder_;
};

TEST_F(PairTest, APackageMovesFromTheHostByteForByte) {
    const std::string blob = Content(3 * kMiB + 1, 1);
    const Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, blob));
    ASSERT_EQ(1U, UploadCount(*host_));
    const Answer answer = GetPkgInfo(*host_, params);
    ASSERT_TRUE(answer.Succeeded()) << answer.body << recorder_->Log();
    EXPECT_EQ("9.0.0-0001", answer.Data()["version"].asString());
    EXPECT_EQ("/var/packages/Camvora/target/cv_addOns_local_display_host/",
              answer.Data()["filePath"].asString());
    EXPECT_TRUE(blob == FetchedBlob(*recorder_, "local_display"));
    EXPECT_EQ(0U, UploadCount(*host_));
    EXPECT_EQ(0U, UploadCount(*recorder_));
    EXPECT_NE(host_->Owner().AddOns("List").requestId, answer.requestId);
    ExpectNoFetch(GetPkgInfo(*host_, params));
}

TEST_F(PairTest, TransfersAtTheSameTimeAreNotMixedUp) {
    const std::string first = Content(8 * kMiB, 1);
    const std::string second = Content(8 * kMiB, 2);
    const Json::Value display =
        Upload(*host_, MakePackage(kLocalDisplayService, first), kLocalDisplayService);
    const Json::Value pack = Upload(*host_, MakePackage(kDevicePackService, second), kDevicePackService);
    auto other = std::async(std::launch::async, [&] { return GetPkgInfo(*host_, display); });
    EXPECT_TRUE(GetPkgInfo(*host_, pack).Succeeded());
    EXPECT_TRUE(other.get().Succeeded());
    EXPECT_TRUE(first == FetchedBlob(*recorder_, "local_display"));
    EXPECT_TRUE(second == FetchedBlob(*recorder_, "device_pack"));
}

// Replaces the pair by one with another secret for calls to the host.
void SpoilSecret(const Appliance& recorder) {
    Json::Value pair = Param("name", "other");
    pair["address"] = Ctl(recorder, {"pair", "list"})["pairs"][0]["address"];
    pair["secretIn"] = SecretOf(recorder, "secret_in");
    pair["secretOut"] = std::string(64, 'a');
    EXPECT_TRUE(recorder.Owner().Post("/pairs", pair.toStyledString()).Succeeded());
    EXPECT_EQ(1U, recorder.Owner().Get("/pairs").Data()["pairs"].size());
}

void RemovePair(const Appliance& recorder) {
    Ctl(recorder, {"pair", "remove", "host"});
}

TEST_F(PairTest, ABrokenPairMovesNothing) {
    for (const auto& breakIt : {SpoilSecret, RemovePair}) {
        Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, "x"));
        breakIt(*recorder_);
        params["isRedirectCgi"] = true;
        ExpectNoFetch(recorder_->Owner().AddOns("GetPkgInfo", params));
        EXPECT_EQ(1U, UploadCount(*host_));
        Pair(*host_, *recorder_);
        ExpectFetch(params);
    }
}

TEST_F(PairTest, AHostThatIsKilledIsAnErrorAndNoMore) {
    Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, "x"));
    params["isRedirectCgi"] = true;
    host_->Kill();
    ExpectNoFetch(recorder_->Owner().AddOns("GetPkgInfo", params));
    EXPECT_NE(std::string::npos, recorder_->Log().find("nobody answers there"));
    host_->Launch();
    Pair(*host_, *recorder_);
    ExpectFetch(params);
}

// The most memory that a process below `server` holds until `isOver`, in KiB.
long PeakBelow(pid_t server, const std::atomic<bool>& isOver) {
    long peakKiB = 0;
    while (!isOver) {
        for (const pid_t pid : Descendants(server)) {
            peakKiB = std::max(peakKiB, PeakMemoryKiB(pid));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return peakKiB;
}

TEST_F(PairTest, ATransferIsHeldInMemoryLessThanThreeTimes) {
    constexpr std::size_t kSizeMiB = 64;
    const Json::Value params =
        Upload(*host_, MakePackage(kLocalDisplayService, Content(kSizeMiB * kMiB - 100'000, 1)));
    std::atomic<bool> isOver{false};
    auto sender = std::async(std::launch::async, PeakBelow, host_->RequestServer(), std::cref(isOver));
    auto receiver = std::async(std::launch::async, PeakBelow, recorder_->RequestServer(), std::cref(isOver));
    EXPECT_TRUE(GetPkgInfo(*host_, params).Succeeded());
    isOver = true;
    for (const long peakKiB : {sender.get(), receiver.get(), PeakMemoryKiB(host_->HttpProcess())}) {
        const double times = static_cast<double>(peakKiB) / (kSizeMiB * 1024);
        EXPECT_GT(times, 1.3);
        EXPECT_LT(times, 3.0);
    }
}

// Its answer may have been lost, so the pair can be confirmed again; but not once the owner has removed it.
TEST_F(PairTest, ACodeIsGoodForOnePairing) {
    HttpCalls stranger = host_->Stranger();
    Json::Value request = Param("code", "ABCD-EFGH-JKLM");
    request["address"] = recorder_->Url();
    EXPECT_EQ(1022, stranger.Post("/pairing", request.toStyledString()).Code());
    request["code"] = NewCode(*host_);
    const Json::Value pair = stranger.Post("/pairing", request.toStyledString()).Data();
    EXPECT_EQ("recorder", pair["name"].asString());
    EXPECT_NE(pair["secretIn"].asString(), pair["secretOut"].asString());
    EXPECT_EQ(1022, stranger.Post("/pairing", request.toStyledString()).Code());
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(stranger.Post("/pairing/confirmation", pair.toStyledString()).Succeeded());
    }
    EXPECT_EQ(200, host_->Owner().Client().Delete("/pairs?name=recorder")->status);
    EXPECT_EQ(1022, stranger.Post("/pairing/confirmation", pair.toStyledString()).Code());
    EXPECT_EQ(0U, host_->Owner().Get("/pairs").Data()["pairs"].size());
}

// The host has answered to the code by then.
TEST_F(PairTest, APairThatTheServerDoesNotKeepIsNotKeptByTheHost) {
    const std::vector<std::string> join = {"pair", "join", host_->Url(), NewCode(*host_), "--as", "no/name"};
    EXPECT_EQ(1, StartCtl(*recorder_, join).Wait().status);
    ExpectFetch(Upload(*host_, MakePackage(kLocalDisplayService, "x")));
}

struct PageCase {
    const char* name;
    const char* method;
    const char* path;
    const char* body;
    bool isOwner;
    int status;
    int code;
    const char* type = "application/json";
};

const PageCase kPageCases[] = {
    {"codes_are_the_owners", "POST", "/pairing/codes", R"({"name":"r"})", false, 401, 1013},
    {"code_for_no_name", "POST", "/pairing/codes", R"({"name":"../r"})", true, 400, 1018},
    {"pairing_without_code", "POST", "/pairing", R"({"address":"http://r:1"})", false, 400, 1018},
    {"pairing_with_address_of_no_server", "POST", "/pairing", R"({"code":"x","address":"file:///x"})", false,
     400, 1018},
    {"confirmation_by_stranger", "POST", "/pairing/confirmation",
     R"({"name":"recorder","secretOut":"0000000000000000000000000000000000000000000000000000000000000000"})",
     false, 403, 1022},
    {"confirmation_without_secret", "POST", "/pairing/confirmation", R"({"name":"recorder"})", false, 400,
     1018},
    {"pairs_are_the_owners", "GET", "/pairs", "", false, 401, 1013},
    {"pair_without_secret", "POST", "/pairs", R"({"name":"h","address":"http://h:1"})", true, 400, 1018},
    {"pair_by_stranger", "POST", "/pairs", "{}", false, 401, 1013},
    {"removal_of_nobody", "DELETE", "/pairs?name=nobody", "", true, 404, 1016},
    {"removal_by_stranger", "DELETE", "/pairs?name=recorder", "", false, 401, 1013},
    {"relay_to_nobody", "POST", "/servers/nobody/api/A/v1/M", "{}", true, 404, 1016},
    {"relay_for_stranger", "POST", "/servers/recorder/api/A/v1/M", "{}", false, 401, 1013},
    {"relay_of_a_page", "GET", "/servers/recorder/log", "", true, 404, 1016},
    {"relay_of_a_form", "POST", "/servers/recorder/api/A/v1/M", "x", true, 415, 1007,
     "multipart/form-data; boundary=b"},
    {"relay_of_damaged_json", "POST", "/servers/recorder/api/A/v1/M", "{", true, 400, 1004},
    {"relay_passes_errors_on", "POST", "/servers/recorder/api/A/v1/M", "{}", true, 404, 1001},
};

TEST_F(PairTest, PagesRefuseWhatIsNotTheirs) {
    for (const PageCase& c : kPageCases) {
        SCOPED_TRACE(c.name);
        httplib::Request request;
        request.method = c.method;
        request.path = c.path;
        request.body = c.body;
        request.set_header("Content-Type", c.type);
        const Answer answer =
            ToAnswer((c.isOwner ? host_->Owner() : host_->Stranger()).Client().send(request));
        EXPECT_EQ(c.status, answer.status);
        EXPECT_EQ(c.code, answer.Code());
    }
}

TEST_F(PairTest, CallsAreRelayedToTheServerOfThatName) {
    const Json::Value own = host_->Owner().AddOns("GetInfo", Param("service", 1)).Data();
    EXPECT_EQ(own["name"], Ctl(*host_, {"--server", "recorder", "call", "GetInfo", "service=1"})["name"]);
    SQLite::Database(host_->PackagePath(std::string(kData) + "/camvora.db"), SQLite::OPEN_READWRITE, 5000)
        .exec("UPDATE pairs SET address = 'http://127.0.0.1:1'");
    const Answer answer = host_->Owner().Post(std::string(kRelay) + "List", "");
    EXPECT_EQ(502, answer.status);
    EXPECT_EQ(1023, answer.Code());
}

TEST_F(PairTest, SecretsAreInTheDatabaseOnly) {
    const std::string code = NewCode(*host_);
    ExpectFetch(Upload(*host_, MakePackage(kLocalDisplayService, "x")));
    const std::string secrets[] = {code, SecretOf(*host_, "secret_in"), SecretOf(*host_, "secret_out")};
    EXPECT_EQ(secrets[1], SecretOf(*recorder_, "secret_out"));
    for (const Appliance* appliance : {host_.get(), recorder_.get()}) {
        const std::string pairs = appliance->Owner().Get("/pairs").body.toStyledString();
        for (const std::string& secret : secrets) {
            EXPECT_EQ(std::string::npos, pairs.find(secret));
            for (const auto& entry :
                 fs::directory_iterator(appliance->PackagePath(std::string(kData) + "/log"))) {
                EXPECT_EQ(std::string::npos, ReadFile(entry.path()).find(secret)) << entry.path();
            }
        }
    }
}

}  // namespace
}  // namespace e2e
