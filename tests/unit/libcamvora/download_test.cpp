// Downloads from servers of every kind, in processes that are killed or cancelled.
#include "libcamvora/downloadend.h"
#include "libcamvora/downloader.h"
#include "libcamvora/downloadstate.h"
#include "libcamvora/hextext.h"
#include "support/smalldisk.h"
#include "support/temporaryfolder.h"

#include "children.h"
#include "scriptedserver.h"
#include "signedfeed.h"

#include <gtest/gtest.h>
#include <openssl/sha.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using camvora::Download;
using camvora::UpdateFailure;
using std::chrono::milliseconds;

std::string Content(std::size_t sizeBytes) {
    std::string content;
    for (std::size_t i = 0; content.size() < sizeBytes; ++i) {
        content += std::to_string(i * i) + '\n';
    }
    content.resize(sizeBytes);
    return content;
}

std::string Sha256Of(const std::string& bytes) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
    SHA256(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), hash.data());
    return camvora::HexText(hash.data(), hash.size());
}

// Where the request wants the file to begin; 0 when it wants all of it.
std::size_t RangeStart(const std::string& head) {
    constexpr char kRange[] = "Range: bytes=";
    const std::size_t at = head.find(kRange);
    return at == std::string::npos ? 0 : std::stoul(head.substr(at + sizeof(kRange) - 1));
}

std::string WholeAnswer(const std::string& file) {
    return HttpAnswer("200 OK\r\nETag: \"1\"", file);
}

std::string RestAnswer(const std::string& file, std::size_t start) {
    const std::string range =
        std::to_string(start) + "-" + std::to_string(file.size() - 1) + "/" + std::to_string(file.size());
    return HttpAnswer("206 Partial\r\nContent-Range: bytes " + range, file.substr(start));
}

// What a good server answers.
std::string GoodAnswer(const std::string& file, const std::string& head) {
    const std::size_t start = RangeStart(head);
    return start == 0 ? WholeAnswer(file) : RestAnswer(file, start);
}

class DownloadTest : public testing::Test {
protected:
    static constexpr char kVersion[] = "2.2.0-0140";

    DownloadTest() {
        folder_.Write("feed.pem", signer_.PublicKey());
        settings_.service = ADDON_SERVICE_DEVICE_PACK;
        settings_.shortName = "device_pack";
        settings_.conf = {server_.Address(), folder_.PathOf("feed.pem"), 100 << 20};
        settings_.installedVersion = "2.1.0-0130";
        settings_.downloadFolder = folder_.PathOf("download");
        settings_.lockFile = folder_.PathOf("lock");
        settings_.downloadPace = {milliseconds(300), 1 << 20};
        settings_.pauses = {milliseconds(1), milliseconds(1)};
        Offer(kVersion, Content(1 << 20));
        script_ = [this](const std::string& head, std::size_t) { return Good(head); };
    }

    // The feed has this release from now on.
    void Offer(const std::string& version, const std::string& file) {
        file_ = file;
        Json::Value entry = ReleaseEntry(version);
        entry["size"] = Json::UInt64{file.size()};
        entry["sha256"] = Sha256Of(file);
        Json::Value releases;
        releases.append(entry);
        index_ = signer_.Index(FeedPayload(++serial_, releases));
    }

    ScriptedServer::Answer Good(const std::string& head) const { return {GoodAnswer(file_, head), ""}; }

    ScriptedServer::Answer Serve(const std::string& head) {
        if (head.rfind("GET /device_pack.json ", 0) == 0) {
            return {HttpAnswer("200 OK", index_), ""};
        }
        fileRequests_.push_back(head);
        return script_(head, fileRequests_.size() - 1);
    }

    // Why the download failed; empty where it did not.
    std::string Outcome() {
        try {
            camvora::DownloadRelease(store_, settings_);
            return "";
        } catch (const UpdateFailure& failure) {
            return failure.what();
        }
    }

    // Starts `work` in a process of its own.
    std::unique_ptr<Background> Start(const std::function<bool()>& work) {
        store_.BeforeFork();
        auto process = std::make_unique<Background>([this, &work] {
            store_.AfterForkInChild();
            return work();
        });
        store_.AfterForkInParent();
        return process;
    }

    bool InChild(const std::function<bool()>& work) { return Start(work)->Worked(); }

    std::unique_ptr<Background> StartDownload() {
        return Start([this] { return Outcome().empty(); });
    }

    Download State() { return camvora::StateOfDownload(store_, settings_); }

    void WaitForBytes(long long bytes) {
        for (int i = 0; i < 500 && State().bytes < bytes; ++i) {
            std::this_thread::sleep_for(milliseconds(10));
        }
        ASSERT_LE(bytes, State().bytes);
    }

    std::set<std::string> Files() const {
        std::set<std::string> names;
        if (std::filesystem::exists(settings_.downloadFolder)) {
            for (const auto& entry : std::filesystem::directory_iterator(settings_.downloadFolder)) {
                names.insert(entry.path().filename().string());
            }
        }
        return names;
    }

    std::uintmax_t FileSize(const std::string& name) const {
        std::error_code isAbsent;
        const std::uintmax_t size =
            std::filesystem::file_size(settings_.downloadFolder + "/" + name, isAbsent);
        return isAbsent ? 0 : size;
    }

    std::string Partial() const { return "device_pack-" + Sha256Of(file_) + ".partial"; }

    void ExpectReady() {
        const Download download = State();
        EXPECT_EQ(camvora::kDownloadReady, download.status);
        EXPECT_EQ(file_.size(), static_cast<std::size_t>(download.bytes));
        const std::string name = "device_pack-" + download.info.version + ".spk";
        EXPECT_EQ(std::set<std::string>{name}, Files());
        EXPECT_EQ(settings_.downloadFolder + "/" + name, download.info.filePath);
        EXPECT_TRUE(folder_.Read("download/" + name) == file_);
    }

    void ExpectNothing() {
        EXPECT_EQ(camvora::kNoDownload, State().status);
        EXPECT_EQ(std::set<std::string>{}, Files());
    }

    const TemporaryFolder folder_;
    const FeedSigner signer_;
    camvora::Store store_{folder_.PathOf("camvora.db")};
    camvora::UpdateSettings settings_;
    std::string file_;
    std::string index_;
    int serial_ = 0;
    ScriptedServer::Script script_;
    std::vector<std::string> fileRequests_;  // read after the server's answer has ended
    ScriptedServer server_{[this](const std::string& head, std::size_t) { return Serve(head); }};
};

struct ServerCase {
    const char* name;
    // Answers request `number` of the file.
    ScriptedServer::Answer (*script)(const std::string& file, const std::string& head, std::size_t number);
    std::size_t requests;
    const char* problem;
    bool leavesPartial;
};

std::string Half(const std::string& answer) {
    return answer.substr(0, answer.size() / 2);
}

using Head = const std::string&;
using File = const std::string&;

constexpr char kCut[] = "the connection ended without a whole answer";
constexpr char kWrongSize[] = "the server's file has another size than the one that was published";
constexpr char kWrongHash[] = "what arrived is not the file that was published: its SHA-256 is another";

const ServerCase kServerCases[] = {
    {"whole",
     [](File file, Head, std::size_t) {
         return ScriptedServer::Answer{WholeAnswer(file), ""};
     },
     1, "", false},
    {"without_length",
     [](File file, Head, std::size_t) {
         return ScriptedServer::Answer{"HTTP/1.1 200 OK\r\n\r\n" + file, ""};
     },
     1, "", false},
    {"cut_twice",
     [](File file, Head head, std::size_t number) {
         const std::string answer = GoodAnswer(file, head);
         return ScriptedServer::Answer{number < 2 ? Half(answer) : answer, ""};
     },
     3, "", false},
    {"cut_always",
     [](File file, Head head, std::size_t) {
         return ScriptedServer::Answer{Half(GoodAnswer(file, head)), ""};
     },
     3, kCut, true},
    {"range_ignored",
     [](File file, Head, std::size_t number) {
         return ScriptedServer::Answer{number == 0 ? Half(WholeAnswer(file)) : WholeAnswer(file), ""};
     },
     2, "", false},
    {"range_refused",
     [](File file, Head head, std::size_t number) {
         if (number == 0) {
             return ScriptedServer::Answer{Half(WholeAnswer(file)), ""};
         }
         return ScriptedServer::Answer{RangeStart(head) > 0 ? HttpAnswer("416 No", "no") : WholeAnswer(file),
                                       ""};
     },
     3, "", false},
    {"another_range",
     [](File file, Head head, std::size_t number) {
         if (number == 0) {
             return ScriptedServer::Answer{Half(WholeAnswer(file)), ""};
         }
         return ScriptedServer::Answer{RangeStart(head) > 0 ? RestAnswer(file, 1) : WholeAnswer(file), ""};
     },
     3, "", false},
    {"too_short",
     [](File file, Head, std::size_t) {
         return ScriptedServer::Answer{WholeAnswer(file.substr(1)), ""};
     },
     1, kWrongSize, false},
    {"too_long",
     [](File file, Head, std::size_t) {
         return ScriptedServer::Answer{WholeAnswer(file + "x"), ""};
     },
     1, kWrongSize, false},
    {"endless",
     [](File file, Head, std::size_t) {
         return ScriptedServer::Answer{"HTTP/1.1 200 OK\r\n\r\n", file, milliseconds(0)};
     },
     1, kWrongSize, false},
    {"wrong_hash",
     [](File file, Head, std::size_t) {
         return ScriptedServer::Answer{WholeAnswer("x" + file.substr(1)), ""};
     },
     1, kWrongHash, false},
    {"not_found",
     [](File, Head, std::size_t) {
         return ScriptedServer::Answer{HttpAnswer("404 Not Found", "no"), ""};
     },
     1, "the server answers with status 404", true},
    {"failing_twice",
     [](File file, Head head, std::size_t number) {
         return ScriptedServer::Answer{number < 2 ? HttpAnswer("500 Oh", "no") : GoodAnswer(file, head), ""};
     },
     3, "", false},
    {"failing",
     [](File, Head, std::size_t) {
         return ScriptedServer::Answer{HttpAnswer("503 Oh", "no"), ""};
     },
     3, "the server answers with status 503", true},
    {"dripping",
     [](File file, Head head, std::size_t) {
         return ScriptedServer::Answer{Half(GoodAnswer(file, head)), "x"};
     },
     3, "it is too slow", true},
};

class DownloadServerTest : public DownloadTest, public testing::WithParamInterface<ServerCase> {};

TEST_P(DownloadServerTest, HasItsOutcomeAndALaterDownloadSucceeds) {
    script_ = [this](const std::string& head, std::size_t number) {
        return GetParam().script(file_, head, number);
    };
    EXPECT_EQ(GetParam().problem, Outcome());
    EXPECT_EQ(GetParam().requests, fileRequests_.size());
    if (*GetParam().problem != '\0') {
        EXPECT_EQ(camvora::kDownloadFailed, State().status);
        EXPECT_EQ(GetParam().problem, State().problem);
        EXPECT_EQ(kVersion, State().info.version);
        EXPECT_EQ(GetParam().leavesPartial ? std::set<std::string>{Partial()} : std::set<std::string>{},
                  Files());
        script_ = [this](const std::string& head, std::size_t) { return Good(head); };
        EXPECT_EQ("", Outcome());
    }
    ExpectReady();
}

INSTANTIATE_TEST_SUITE_P(All, DownloadServerTest, testing::ValuesIn(kServerCases),
                         [](const auto& c) { return c.param.name; });

TEST_F(DownloadTest, AsksForTheRestOnlyOfTheSameFile) {
    script_ = [this](const std::string& head, std::size_t number) {
        return ScriptedServer::Answer{number == 0 ? Half(WholeAnswer(file_)) : GoodAnswer(file_, head), ""};
    };
    EXPECT_EQ("", Outcome());
    EXPECT_EQ(0U, fileRequests_.at(0).rfind("GET /device%20pack.spk ", 0));
    EXPECT_GT(RangeStart(fileRequests_.at(1)), file_.size() / 3);
    EXPECT_NE(std::string::npos, fileRequests_.at(1).find("\r\nIf-Range: \"1\"\r\n"));
}

TEST_F(DownloadTest, ThatIsCutAnywhereGoesOnLater) {
    constexpr std::size_t kPlaces = 10;
    settings_.pauses.clear();
    for (std::size_t place = 0; place < kPlaces; ++place) {
        script_ = [this, place](const std::string& head, std::size_t) {
            const std::string answer = GoodAnswer(file_, head);
            return ScriptedServer::Answer{answer.substr(0, answer.size() * place / kPlaces), ""};
        };
        EXPECT_EQ(kCut, Outcome());
        script_ = [this](const std::string& head, std::size_t) { return Good(head); };
        EXPECT_EQ("", Outcome());
        EXPECT_EQ(place == 0, RangeStart(fileRequests_.back()) == 0);
        ExpectReady();
        camvora::CleanDownload(store_, settings_);
    }
}

TEST_F(DownloadTest, OfADamagedPartStartsAnew) {
    std::filesystem::create_directory(settings_.downloadFolder);
    for (const std::string& part :
         {std::string(1000, '\0'), std::string(2 << 20, 'x'), std::string(1 << 20, 'x')}) {
        folder_.Write("download/" + Partial(), part);
        EXPECT_EQ("", Outcome());
        ExpectReady();
        camvora::CleanDownload(store_, settings_);
        ExpectNothing();
    }
}

TEST_F(DownloadTest, OfTheSameVersionIsNotRepeatedAndOfAnOlderOneReplaced) {
    EXPECT_EQ("", Outcome());
    EXPECT_EQ("", Outcome());
    EXPECT_EQ(1U, fileRequests_.size());
    settings_.conf.feedUrl += "/nowhere";
    EXPECT_NE("", Outcome());
    ExpectReady();
    settings_.conf.feedUrl = server_.Address();

    Offer("2.3.0-0150", Content(1000));
    folder_.Write("download/device_pack-old.partial", "old");
    EXPECT_EQ("", Outcome());
    ExpectReady();
    EXPECT_EQ("2.3.0-0150", State().info.version);
    for (const char* installed : {"2.3.0-0150", "2.3.0-0151"}) {  // by an upload
        settings_.installedVersion = installed;
        EXPECT_EQ(camvora::kNoDownload, State().status);
        camvora::CancelDownload(store_, settings_);
    }
    settings_.installedVersion.clear();
    ExpectReady();

    std::filesystem::remove(State().info.filePath);
    EXPECT_EQ(camvora::kNoDownload, State().status);
    EXPECT_EQ("", Outcome());
    ExpectReady();
}

TEST_F(DownloadTest, FailsBeforeItFetchesWhatCannotBeTaken) {
    settings_.conf.downloadLimitBytes = 1000;
    EXPECT_EQ("it is larger than downloads may be", Outcome());
    settings_.installedVersion = kVersion;
    EXPECT_EQ("there is no newer release", Outcome());
    settings_.conf.feedUrl = "";
    EXPECT_EQ("no feed is set", Outcome());
    EXPECT_EQ("no feed is set", State().problem);
    EXPECT_TRUE(fileRequests_.empty());
    camvora::CancelDownload(store_, settings_);
    ExpectNothing();
}

TEST_F(DownloadTest, OnAFullDiskLeavesItsSpaceFree) {
    std::filesystem::create_directory(settings_.downloadFolder);
    script_ = [this](const std::string& head, std::size_t) {
        return ScriptedServer::Answer{GoodAnswer(file_, head), "", milliseconds(5), 16 << 10};
    };
    EXPECT_TRUE(InChild([this] {
        if (!MountSmallDisk(settings_.downloadFolder, 512 << 10)) {
            return true;  // the machine refuses it
        }
        const bool isRefused = Outcome() == "there is not enough space on the disk";
        (void)ResizeSmallDisk(settings_.downloadFolder, 4 << 20);
        std::thread shrinks([this] {
            while (FileSize(Partial()) == 0) {
                std::this_thread::sleep_for(milliseconds(1));
            }
            (void)ResizeSmallDisk(settings_.downloadFolder, 600 << 10);
        });
        const std::string outcome = Outcome();
        shrinks.join();
        return isRefused && outcome.rfind("the file cannot be written: ", 0) == 0 && Files().empty();
    }));
}

class KilledDownload : public DownloadTest {
protected:
    KilledDownload() {
        settings_.downloadPace = {milliseconds(20000), 1};
        script_ = [this](const std::string& head, std::size_t) {
            return ScriptedServer::Answer{GoodAnswer(file_, head), "", milliseconds(1), 16 << 10};
        };
    }

    void Stall() {
        script_ = [this](const std::string&, std::size_t) {
            ScriptedServer::Answer answer{Half(WholeAnswer(file_)), ""};
            answer.isHeld = true;
            return answer;
        };
    }
};

TEST_F(KilledDownload, IsSeenAsFailedAndResumed) {
    Offer(kVersion, Content(256 << 10));
    for (int trial = 0; trial < 20; ++trial) {
        const auto process = StartDownload();
        std::this_thread::sleep_for(milliseconds(3 * trial));
        process->Kill();
        EXPECT_NE(camvora::kDownloadRuns, State().status);
        EXPECT_EQ("", Outcome());
        ExpectReady();
        camvora::CleanDownload(store_, settings_);
    }
    Stall();
    const auto process = StartDownload();
    WaitForBytes(1);
    process->Kill();
    EXPECT_EQ(camvora::kDownloadFailed, State().status);
    EXPECT_EQ("the download was killed", State().problem);
    script_ = [this](const std::string& head, std::size_t) { return Good(head); };
    EXPECT_EQ("", Outcome());
    EXPECT_LT(0U, RangeStart(fileRequests_.back()));
    ExpectReady();
}

TEST_F(KilledDownload, ByACancelLeavesNothing) {
    camvora::CancelDownload(store_, settings_);  // none yet
    Stall();
    const auto process = StartDownload();
    WaitForBytes(1);
    EXPECT_EQ(camvora::kDownloadRuns, State().status);
    EXPECT_EQ("another process downloads it", Outcome());
    camvora::CleanDownload(store_, settings_);
    EXPECT_EQ(camvora::kDownloadRuns, State().status);
    const auto start = std::chrono::steady_clock::now();
    camvora::CancelDownload(store_, settings_);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_FALSE(process->Worked());
    ExpectNothing();
}

TEST_F(KilledDownload, ByACancelAtItsEndIsReadyOrGone) {
    Offer(kVersion, Content(100000));
    for (int trial = 0; trial < 20; ++trial) {
        const auto process = StartDownload();
        std::this_thread::sleep_for(milliseconds(2 * trial));
        camvora::CancelDownload(store_, settings_);
        if (State().status == camvora::kDownloadReady) {
            ExpectReady();
            camvora::CleanDownload(store_, settings_);
        }
        process->Kill();
        ExpectNothing();
    }
}

TEST_F(KilledDownload, BySeveralCancelsAtOnceLeavesNothing) {
    Stall();
    const auto process = StartDownload();
    WaitForBytes(1);
    EXPECT_TRUE(InChild([this] {
        return CountSuccesses(5, [this](int) {
                   camvora::CancelDownload(store_, settings_);
                   return true;
               }) == 5;
    }));
    ExpectNothing();
}

}  // namespace
