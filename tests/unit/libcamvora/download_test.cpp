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

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using camvora::Download;
using camvora::UpdateFailure;
using std::chrono::milliseconds;

std::string Content(std::size_t sizeBytes) {
    std::minstd_rand random;
    std::string content(sizeBytes, '\0');
    std::generate(content.begin(), content.end(), [&random] { return static_cast<char>(random()); });
    return content;
}

std::string Sha256Of(const std::string& bytes) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> hash{};
    SHA256(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), hash.data());
    return camvora::HexText(hash.data(), hash.size());
}

using Answer = ScriptedServer::Answer;
using File = const std::string&;
using Head = const std::string&;
using Answerer = std::function<Answer(File file, Head head)>;

// Where the request wants the file to begin; 0 when it wants all of it.
std::size_t RangeStart(Head head) {
    return NumberBehind("Range: bytes=", head);
}

Answer Whole(File file, Head /*head*/) {
    return {HttpAnswer("200 OK\r\nETag: \"1\"", file)};
}

Answer Rest(File file, std::size_t start) {
    const std::string range =
        std::to_string(start) + "-" + std::to_string(file.size() - 1) + "/" + std::to_string(file.size());
    return {HttpAnswer("206 Partial\r\nContent-Range: bytes " + range, file.substr(start))};
}

// What a good server answers.
Answer Good(File file, Head head) {
    const std::size_t start = RangeStart(head);
    return start == 0 ? Whole(file, head) : Rest(file, start);
}

Answer Cut(File file, Head head) {
    Answer answer = Good(file, head);
    answer.bytes.resize(answer.bytes.size() / 2);
    return answer;
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
    }

    // The feed has this release from now on.
    void Offer(const std::string& version, const std::string& file) {
        file_ = file;
        Json::Value entry = ReleaseEntry(version);
        entry["size"] = Json::UInt64{file.size()};
        entry["sha256"] = Sha256Of(file);
        index_ = signer_.Index(FeedPayload(++serial_, {entry}));
    }

    // The script's last answer is given again and again.
    Answer Serve(Head head) {
        if (head.rfind("GET /device_pack.json ", 0) == 0) {
            return {HttpAnswer("200 OK", index_)};
        }
        fileRequests_.push_back(head);
        const std::size_t number = std::min(fileRequests_.size(), script_.size()) - 1;
        return script_[number](file_, head);
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

    std::unique_ptr<Background> StartDownload() {
        return StartWith(store_, [this] { return Outcome().empty(); });
    }

    Download State() { return camvora::StateOfDownload(store_, settings_); }

    void ServeSlowly(milliseconds pause, std::size_t pieceBytes) {
        script_ = {[=](File file, Head head) {
            return Answer{Good(file, head).bytes, "", pause, pieceBytes};
        }};
    }

    std::set<std::string> Files() const {
        std::set<std::string> names;
        std::error_code isAbsent;
        for (const auto& entry : std::filesystem::directory_iterator(settings_.downloadFolder, isAbsent)) {
            names.insert(entry.path().filename().string());
        }
        return names;
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
    std::vector<Answerer> script_ = {Good};
    std::vector<std::string> fileRequests_;  // read after the server's answer has ended
    ScriptedServer server_{[this](const std::string& head, std::size_t) { return Serve(head); }};
};

struct ServerCase {
    const char* name;
    std::vector<Answerer> script;
    std::size_t requests;
    const char* problem;
    bool leavesPartial;
};

constexpr char kWrongSize[] = "the server's file has another size than the one that was published";

Answer WholeWithoutLength(File file, Head /*head*/) {
    return {"HTTP/1.1 200 OK\r\n\r\n" + file};
}

Answer RestRefused(File file, Head head) {
    return RangeStart(head) > 0 ? Answer{HttpAnswer("416 No", "no")} : Whole(file, head);
}

Answer AnotherRest(File file, Head head) {
    return RangeStart(head) > 0 ? Rest(file, 1) : Whole(file, head);
}

Answer TooShort(File file, Head head) {
    return Whole(file.substr(1), head);
}

Answer Endless(File file, Head /*head*/) {
    return {"HTTP/1.1 200 OK\r\n\r\n", file, milliseconds(0)};
}

Answer Altered(File file, Head head) {
    return Whole("x" + file.substr(1), head);
}

Answer Dripping(File file, Head head) {
    return {Cut(file, head).bytes, "x"};
}

Answerer Always(const char* status) {
    return [status](File /*file*/, Head /*head*/) { return Answer{HttpAnswer(status, "no")}; };
}

const ServerCase kServerCases[] = {
    {"without_length", {WholeWithoutLength}, 1, "", false},
    {"cut", {Cut}, 3, "the connection ended without a whole answer", true},
    {"range_ignored", {Cut, Whole}, 2, "", false},
    {"range_refused", {Cut, RestRefused}, 3, "", false},
    {"another_range", {Cut, AnotherRest}, 3, "", false},
    {"too_short", {TooShort}, 1, kWrongSize, false},
    {"endless", {Endless}, 1, kWrongSize, false},
    {"altered",
     {Altered},
     1,
     "what arrived is not the file that was published: its SHA-256 is another",
     false},
    {"not_found", {Always("404 Not Found")}, 1, "the server answers with status 404", true},
    {"failing", {Always("503 Oh")}, 3, "the server answers with status 503", true},
    {"dripping", {Dripping}, 3, "it is too slow", true},
};

class DownloadServerTest : public DownloadTest, public testing::WithParamInterface<ServerCase> {};

TEST_P(DownloadServerTest, HasItsOutcomeAndALaterDownloadSucceeds) {
    script_ = GetParam().script;
    EXPECT_EQ(GetParam().problem, Outcome());
    EXPECT_EQ(GetParam().requests, fileRequests_.size());
    if (*GetParam().problem != '\0') {
        EXPECT_EQ(camvora::kDownloadFailed, State().status);
        EXPECT_EQ(GetParam().problem, State().problem);
        EXPECT_EQ(kVersion, State().info.version);
        EXPECT_EQ(GetParam().leavesPartial ? std::set<std::string>{Partial()} : std::set<std::string>{},
                  Files());
        script_ = {Good};
        EXPECT_EQ("", Outcome());
    }
    ExpectReady();
}

INSTANTIATE_TEST_SUITE_P(All, DownloadServerTest, testing::ValuesIn(kServerCases),
                         [](const auto& c) { return c.param.name; });

TEST_F(DownloadTest, AsksForTheRestOnlyOfTheSameFile) {
    script_ = {Cut, Good};
    EXPECT_EQ("", Outcome());
    EXPECT_EQ(0U, fileRequests_.at(0).rfind("GET /device%20pack.spk ", 0));
    EXPECT_GT(RangeStart(fileRequests_.at(1)), file_.size() / 3);
    EXPECT_NE(std::string::npos, fileRequests_.at(1).find("\r\nIf-Range: \"1\"\r\n"));
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
    if (!CanMountSmallDisk()) {
        GTEST_SKIP() << "no small disk can be had here";
    }
    std::filesystem::create_directory(settings_.downloadFolder);
    ServeSlowly(milliseconds(5), 16 << 10);
    EXPECT_TRUE(WorksInChild(store_, [this] {
        const bool isMounted = MountSmallDisk(settings_.downloadFolder, 512 << 10);
        const bool isRefused = isMounted && Outcome() == "there is not enough space on the disk";
        (void)ResizeSmallDisk(settings_.downloadFolder, 4 << 20);
        std::thread shrinks([this] {
            while (folder_.Read("download/" + Partial()).empty()) {
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
    KilledDownload() { settings_.downloadPace = {milliseconds(20000), 1}; }

    // One that will not end by itself soon.
    std::unique_ptr<Background> StartLongDownload() {
        ServeSlowly(milliseconds(200), 64 << 10);
        auto process = StartDownload();
        for (int i = 0; i < 500 && State().bytes == 0; ++i) {
            std::this_thread::sleep_for(milliseconds(10));
        }
        EXPECT_EQ(camvora::kDownloadRuns, State().status);
        return process;
    }
};

TEST_F(KilledDownload, IsSeenAsFailedAndResumed) {
    const auto process = StartLongDownload();
    process->Kill();
    EXPECT_EQ(camvora::kDownloadFailed, State().status);
    EXPECT_EQ("the download was killed", State().problem);
    script_ = {Good};
    EXPECT_EQ("", Outcome());
    EXPECT_LT(0U, RangeStart(fileRequests_.back()));
    ExpectReady();
}

TEST_F(KilledDownload, AtAnyMomentCanBeFinished) {
    Offer(kVersion, Content(256 << 10));
    ServeSlowly(milliseconds(1), 16 << 10);
    for (int trial = 0; trial < 20; ++trial) {
        const auto process = StartDownload();
        std::this_thread::sleep_for(milliseconds(3 * trial));
        process->Kill();
        EXPECT_NE(camvora::kDownloadRuns, State().status);
        EXPECT_EQ("", Outcome());
        ExpectReady();
        camvora::CleanDownload(store_, settings_);
    }
}

TEST_F(KilledDownload, ByACancelLeavesNothing) {
    camvora::CancelDownload(store_, settings_);  // none yet
    const auto process = StartLongDownload();
    EXPECT_EQ("another process downloads it", Outcome());
    camvora::CleanDownload(store_, settings_);
    EXPECT_EQ(camvora::kDownloadRuns, State().status);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(WorksInChild(store_, [this] {  // several at once
        return CountSuccesses(5, [this](int) {
                   camvora::CancelDownload(store_, settings_);
                   return true;
               }) == 5;
    }));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_FALSE(process->Worked());
    ExpectNothing();
}

TEST_F(KilledDownload, ByACancelAtItsEndIsReadyOrGone) {
    Offer(kVersion, Content(100000));
    ServeSlowly(milliseconds(1), 16 << 10);
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

}  // namespace
