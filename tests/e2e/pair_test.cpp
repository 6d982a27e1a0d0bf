// A CMS host and a recording server that are paired, and packages that move from the one to the other.
#include "e2e/appliance.h"
#include "e2e/ctl.h"
#include "e2e/packages.h"
#include "e2e/processes.h"
#include "e2e/proof.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <json/writer.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
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

struct BrokenPair {
    const char* name;
    std::function<void(const Appliance& recorder)> breakIt;
};

void KeepHost(const Appliance& recorder, const std::string& address, const std::string& secretOut) {
    Json::Value pair = Param("name", "other");
    pair["address"] = address;
    pair["secretIn"] = SecretOf(recorder, "secret_in");
    pair["secretOut"] = secretOut;
    EXPECT_TRUE(recorder.Owner().Post("/pairs", pair.toStyledString()).Succeeded());
    EXPECT_EQ(1U, recorder.Owner().Get("/pairs").Data()["pairs"].size());
}

const BrokenPair kBrokenPairs[] = {
    {"wrong_secret",
     [](const Appliance& recorder) {
         KeepHost(recorder, Ctl(recorder, {"pair", "list"})["pairs"][0]["address"].asString(),
                  std::string(64, 'a'));
     }},
    {"nobody_at_the_address",
     [](const Appliance& recorder) {
         KeepHost(recorder, "http://127.0.0.1:1", SecretOf(recorder, "secret_out"));
     }},
    {"not_paired",
     [](const Appliance& recorder) {
         Ctl(recorder, {"pair", "remove", "host"});
     }},
};

TEST_F(PairTest, ABrokenPairMovesNothing) {
    for (const BrokenPair& c : kBrokenPairs) {
        SCOPED_TRACE(c.name);
        Pair(*host_, *recorder_);
        Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, "x"));
        c.breakIt(*recorder_);
        params["isRedirectCgi"] = true;
        ExpectNoFetch(recorder_->Owner().AddOns("GetPkgInfo", params));
        EXPECT_EQ(1U, UploadCount(*host_));
        Pair(*host_, *recorder_);
        ExpectFetch(params);
    }
}

TEST_F(PairTest, AClockThatIsOffByAnHourMovesNothing) {
    const Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, "x"));
    const std::string made = std::to_string(std::time(nullptr) - 3600);
    Json::Value request = Param("filePath", params["pkgInfo"]["filePath"]);
    request["client"] = "REC_SERVER";
    request["cookie"] = Proof(SecretOf(*recorder_, "secret_out"), made);
    const Answer answer = host_->Stranger().AddOns("LoadFile", request, {{"Cookie", "timestamp=" + made}});
    EXPECT_EQ(105, answer.Code());
    ExpectFetch(params);
}

// Passes calls on to the host, and the first piece of the reply back; the rest is passed back after Release.
class SlowLine {
public:
    explicit SlowLine(std::string hostUrl) : hostUrl_(std::move(hostUrl)) {
        server_.Post(".*", [this](const httplib::Request& call, httplib::Response& reply) {
            reply.set_content_provider(kReplyBytes, "application/json",
                                       [this, call](std::size_t, std::size_t, httplib::DataSink& back) {
                                           PassOn(call, back);
                                           return false;
                                       });
        });
        port_ = server_.bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_.listen_after_bind(); });
    }
    ~SlowLine() {
        server_.stop();
        thread_.join();
    }
    std::string Url() const { return "http://127.0.0.1:" + std::to_string(port_); }
    void AwaitFirstPiece() { firstPiece_.get_future().wait(); }
    void Release() { release_.set_value(); }

private:
    static constexpr std::size_t kReplyBytes = 1000 * kMiB;  // never comes

    void PassOn(const httplib::Request& call, httplib::DataSink& back) {
        httplib::Request request;
        request.method = call.method;
        request.path = call.path;
        request.body = call.body;
        request.headers = {{"Cookie", call.get_header_value("Cookie")}, {"Content-Type", "application/json"}};
        bool isFirst = true;
        request.content_receiver = [&](const char* bytes, std::size_t sizeBytes, std::uint64_t,
                                       std::uint64_t) {
            back.write(bytes, sizeBytes);
            if (std::exchange(isFirst, false)) {
                firstPiece_.set_value();
                release_.get_future().wait();
            }
            return true;
        };
        httplib::Client(hostUrl_).send(request);
    }

    std::string hostUrl_;
    httplib::Server server_;
    int port_ = 0;
    std::promise<void> firstPiece_;
    std::promise<void> release_;
    std::thread thread_;
};

TEST_F(PairTest, AHostThatIsKilledInMidTransferLeavesNoPart) {
    SlowLine line(host_->Url());
    KeepHost(*recorder_, line.Url(), SecretOf(*recorder_, "secret_out"));
    Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, Content(32 * kMiB, 1)));
    params["isRedirectCgi"] = true;
    auto answer =
        std::async(std::launch::async, [&] { return recorder_->Owner().AddOns("GetPkgInfo", params); });
    line.AwaitFirstPiece();
    host_->Kill();
    line.Release();
    ExpectNoFetch(answer.get());
    host_->Launch();
    Pair(*host_, *recorder_);
    ExpectFetch(Upload(*host_, MakePackage(kLocalDisplayService, "x")));
}

TEST_F(PairTest, AHostThatIsStoppedIsAnErrorAndNoMore) {
    Json::Value params = Upload(*host_, MakePackage(kLocalDisplayService, "x"));
    params["isRedirectCgi"] = true;
    host_->Stop();
    ExpectNoFetch(recorder_->Owner().AddOns("GetPkgInfo", params));
    EXPECT_NE(std::string::npos, recorder_->Log().find("nobody answers there"));
    host_->Launch();
    Pair(*host_, *recorder_);
    ExpectFetch(params);
}

// The most that a process of the host's other processes than the two listening ones has held, in KiB.
class PeakWatch {
public:
    explicit PeakWatch(std::vector<pid_t> servers)
        : thread_([this, servers] {
              while (!isEnded_) {
                  for (const pid_t server : servers) {
                      for (const pid_t pid : Descendants(server)) {
                          peakKiB_ = std::max(peakKiB_, PeakMemoryKiB(pid));
                      }
                  }
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
          }) {}
    ~PeakWatch() {
        if (thread_.joinable()) {
            (void)Stop();
        }
    }
    long Stop() {
        isEnded_ = true;
        thread_.join();
        return peakKiB_;
    }

private:
    long peakKiB_ = 0;
    std::atomic<bool> isEnded_{false};
    std::thread thread_;
};

TEST_F(PairTest, ATransferIsHeldInMemoryLessThanThreeTimes) {
    constexpr std::size_t kSizeMiB = 64;
    const Json::Value params =
        Upload(*host_, MakePackage(kLocalDisplayService, Content(kSizeMiB * kMiB - 100'000, 1)));
    PeakWatch sender({host_->RequestServer()});
    PeakWatch receiver({recorder_->RequestServer()});
    EXPECT_TRUE(GetPkgInfo(*host_, params).Succeeded());
    for (const long peakKiB : {sender.Stop(), receiver.Stop(), PeakMemoryKiB(host_->HttpProcess())}) {
        const double times = static_cast<double>(peakKiB) / (kSizeMiB * 1024);
        EXPECT_GT(times, 1.3);
        EXPECT_LT(times, 3.0);
    }
}

TEST_F(PairTest, ACodeIsGoodForOnePairing) {
    Json::Value request = Param("code", "ABCD-EFGH-JKLM");
    request["address"] = recorder_->Url();
    EXPECT_EQ(1022, host_->Stranger().Post("/pairing", request.toStyledString()).Code());
    request["code"] = NewCode(*host_);
    const Answer answer = host_->Stranger().Post("/pairing", request.toStyledString());
    EXPECT_EQ("recorder", answer.Data()["name"].asString());
    EXPECT_NE(answer.Data()["secretIn"].asString(), answer.Data()["secretOut"].asString());
    const Answer again = host_->Stranger().Post("/pairing", request.toStyledString());
    EXPECT_EQ(403, again.status);
    EXPECT_EQ(1022, again.Code());
}

// Its answer may have been lost; but not once the owner has removed the pair.
TEST_F(PairTest, ACodesPairCanBeConfirmedAgainUntilItIsRemoved) {
    Json::Value request = Param("code", NewCode(*host_));
    request["address"] = recorder_->Url();
    HttpCalls stranger = host_->Stranger();
    const std::string pair = stranger.Post("/pairing", request.toStyledString()).Data().toStyledString();
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(stranger.Post("/pairing/confirmation", pair).Succeeded());
    }
    EXPECT_EQ(200, host_->Owner().Client().Delete("/pairs?name=recorder")->status);
    EXPECT_EQ(1022, stranger.Post("/pairing/confirmation", pair).Code());
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
    {"code_by_form", "POST", "/pairing/codes", "x", true, 415, 1007, "multipart/form-data; boundary=b"},
    {"pairing_without_code", "POST", "/pairing", R"({"address":"http://r:1"})", false, 400, 1018},
    {"pairing_with_number", "POST", "/pairing", R"({"code":1,"address":"http://r:1"})", false, 400, 1018},
    {"pairing_with_address_of_no_server", "POST", "/pairing", R"({"code":"x","address":"file:///x"})", false,
     400, 1018},
    {"confirmation_by_stranger", "POST", "/pairing/confirmation",
     R"({"name":"recorder","secretOut":"0000000000000000000000000000000000000000000000000000000000000000"})",
     false, 403, 1022},
    {"confirmation_without_secret", "POST", "/pairing/confirmation", R"({"name":"recorder"})", false, 400,
     1018},
    {"pairing_with_get", "GET", "/pairing", "", true, 405, 1017},
    {"pairs_are_the_owners", "GET", "/pairs", "", false, 401, 1013},
    {"pair_without_secret", "POST", "/pairs", R"({"name":"h","address":"http://h:1"})", true, 400, 1018},
    {"pair_by_stranger", "POST", "/pairs", "{}", false, 401, 1013},
    {"pair_with_put", "PUT", "/pairs", "{}", true, 405, 1017},
    {"removal_of_nobody", "DELETE", "/pairs?name=nobody", "", true, 404, 1016},
    {"removal_by_stranger", "DELETE", "/pairs?name=recorder", "", false, 401, 1013},
    {"relay_to_nobody", "POST", "/servers/nobody/api/A/v1/M", "{}", true, 404, 1016},
    {"relay_for_stranger", "POST", "/servers/recorder/api/A/v1/M", "{}", false, 401, 1013},
    {"relay_with_get", "GET", "/servers/recorder/api/A/v1/M", "", true, 405, 1017},
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
    EXPECT_NE(std::string::npos, recorder_->Url().find("127.0.0.1"));
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
