// Checks for a new release, on feeds of every kind.
#include "libcamvora/releasecheck.h"

#include "libcamvora/feeds.h"
#include "platform/files.h"
#include "support/temporaryfolder.h"

#include "scriptedserver.h"
#include "signedfeed.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using camvora::CheckRelease;
using camvora::UpdateFailure;
using Answer = ScriptedServer::Answer;

class ReleaseCheck : public testing::Test {
protected:
    ReleaseCheck() {
        folder_.Write("feed.pem", signer_.PublicKey());
        settings_.service = ADDON_SERVICE_DEVICE_PACK;
        settings_.shortName = "device_pack";
        settings_.conf.feedKeyFile = folder_.PathOf("feed.pem");
        settings_.installedVersion = "2.1.0-0130";
        settings_.mainVersion = "3.2.1-0450";
        settings_.checkLimit = std::chrono::milliseconds(500);
        settings_.conf.feedUrl = server_.Address() + "/feed/";
    }

    std::string Index(int serial, const std::string& version) const {
        return signer_.Index(FeedPayload(serial, {ReleaseEntry(version)}));
    }

    // Why the check failed; the version that it found where it did not.
    std::string Outcome() {
        try {
            const auto release = CheckRelease(store_, settings_);
            return release ? release->version : "nothing newer";
        } catch (const UpdateFailure& failure) {
            return failure.what();
        }
    }

    std::string OutcomeWith(const Answer& answer) {
        script_ = [answer](const std::string&, std::size_t) { return answer; };
        return Outcome();
    }

    std::string OutcomeOf(const std::string& index) { return OutcomeWith({HttpAnswer("200 OK", index)}); }

    std::optional<camvora::Feed> Kept() {
        std::optional<camvora::Feed> feed;
        store_.Query(
            [&](SQLite::Database& database) { feed = camvora::FindFeed(database, settings_.service); });
        return feed;
    }

    const TemporaryFolder folder_;
    const FeedSigner signer_;
    camvora::Store store_{folder_.PathOf("camvora.db")};
    camvora::UpdateSettings settings_;
    ScriptedServer::Script script_;
    ScriptedServer server_{
        [this](const std::string& head, std::size_t number) { return script_(head, number); }};
};

constexpr char kWrongSignature[] = "the index is not signed by the key of the feed";

TEST_F(ReleaseCheck, RefusesAnIndexThatIsNotTheFeeds) {
    Json::Value ofAnother = FeedPayload(1, {ReleaseEntry("2.2.0-0140")});
    ofAnother["service"] = "local_display";
    const std::vector<std::pair<std::string, std::string>> kIndexes = {
        {R"({"payload":"{}"})", "the index has no good \"signature\""},
        {R"({"payload":"{}","signature":"AAAA"})", kWrongSignature},
        {FeedSigner().Index(FeedPayload(1, {})), kWrongSignature},
        {signer_.Index(ofAnother), "the index is that of another add-on"},
        {signer_.Index("text"), "the index has no good \"payload\""},
        {"<html><body>Log in</body></html>", "the index is no JSON object"},
    };
    for (const auto& [index, problem] : kIndexes) {
        EXPECT_EQ(problem, OutcomeOf(index));
    }
    EXPECT_FALSE(Kept());
}

TEST_F(ReleaseCheck, RefusesMembersOfTheWrongTypeOrBeyondTheirBounds) {
    const std::vector<std::pair<const char*, Json::Value>> kBadMembers = {
        {"version", 5},
        {"version", ""},
        {"version", "1/2"},
        {"version", std::string(65, '1')},
        {"file", ""},
        {"file", "a/b"},
        {"file", ".."},
        {"file", "a\nb"},
        {"size", "5"},
        {"size", 0},
        {"size", 1e300},
        {"sha256", std::string(63, 'a')},
        {"sha256", std::string(64, 'A')},
        {"lowestMainVersion", Json::nullValue},
        {"date", "\x1b[2J"},
        {"notes", std::string(70000, 'x')},
        {"serial", -1},
        {"releases", "none"},
    };
    for (const auto& [member, value] : kBadMembers) {
        Json::Value index = FeedPayload(1, {ReleaseEntry("2.2.0-0140")});
        Json::Value& place = index.isMember(member) ? index : index["releases"][0];
        place[member] = value;
        const std::string problem = "the index has no good \"" + std::string(member) + "\"";
        EXPECT_EQ(problem, OutcomeOf(signer_.Index(index))) << JsonWrite(value, true);
    }
    EXPECT_FALSE(Kept());
}

TEST_F(ReleaseCheck, GivesABadServerUpInTime) {
    const std::vector<std::pair<Answer, std::string>> kAnswers = {
        {{HttpAnswer("500 Oh", "no")}, "the feed answers with status 500"},
        {{"HTTP/1.1 304 Not Modified\r\n\r\n"}, "the feed answers with status 304"},
        {{HttpAnswer("302 Found\r\nLocation: device_pack.json", "")},
         "the feed cannot be read: it redirects too often"},
        {{HttpAnswer("302 Found\r\nLocation: file:///etc/passwd", "")},
         "the feed cannot be read: the address is none of the web"},
        {{"HTTP/1.1 200 OK\r\n\r\n", std::string(64 << 10, ' '), std::chrono::milliseconds(0)},
         "the index is too large"},
        {{"HTTP/1.1 200 OK\r\n\r\n", " "}, "the feed cannot be read: it is too slow"},
        {{"HTTP/1.1 200 OK\r\nX: ", "x"}, "the feed cannot be read: it is too slow"},
        {{"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{"},
         "the feed cannot be read: the connection ended without a whole answer"},
    };
    for (const auto& [answer, problem] : kAnswers) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(problem, OutcomeWith(answer)) << answer.bytes;
        EXPECT_LT(std::chrono::steady_clock::now() - start, 4 * settings_.checkLimit);
    }
    EXPECT_FALSE(Kept());
}

TEST_F(ReleaseCheck, SaysWhatIsMissingHere) {
    settings_.conf.feedUrl.clear();
    EXPECT_EQ("no feed is set", Outcome());
    settings_.conf.feedUrl = "ftp://127.0.0.1/";
    EXPECT_EQ("the feed cannot be read: the address is none of the web", Outcome());
    settings_.conf.feedUrl = "http://127.0.0.1:1";
    EXPECT_EQ("the feed cannot be read: nobody answers there", Outcome());
    folder_.Write("feed.pem", "no key");
    EXPECT_EQ("no Ed25519 public key is in " + settings_.conf.feedKeyFile, Outcome());
}

TEST_F(ReleaseCheck, FollowsARedirectionAndKeepsWhatItFound) {
    script_ = [this](const std::string& head, std::size_t) {
        return head.rfind("GET /feed/device_pack.json ", 0) == 0
                   ? Answer{HttpAnswer("307 X\r\nLocation: /b?x=%20", "")}
                   : Answer{HttpAnswer("200 OK", Index(1, "2.2.0-0140"))};
    };
    EXPECT_EQ("2.2.0-0140", Outcome());
    EXPECT_EQ(0U, server_.Requests().at(1).rfind("GET /b?x=%20 ", 0));
    EXPECT_EQ("2.2.0-0140", Kept()->newest.version);
    EXPECT_EQ("Better.\n", Kept()->newest.notes);
}

// As a secure connection does where the server has gone.
TEST_F(ReleaseCheck, OutlivesAWriteToNobody) {
    (void)std::signal(SIGPIPE, SIG_DFL);
    script_ = [this](const std::string&, std::size_t) {
        (void)raise(SIGPIPE);
        return Answer{HttpAnswer("200 OK", Index(1, "2.2.0-0140"))};
    };
    EXPECT_EQ("2.2.0-0140", Outcome());
}

TEST_F(ReleaseCheck, RefusesAnOlderIndexOfTheSameKey) {
    const std::string tenth = Index(10, "2.2.0-0140");
    const std::string ninth = Index(9, "2.2.0-0140");
    EXPECT_EQ("2.2.0-0140", OutcomeOf(tenth));
    EXPECT_EQ("the index is older than one that was seen before", OutcomeOf(ninth));
    settings_.conf.feedUrl = server_.Address() + "/mirror";
    EXPECT_EQ("the index is older than one that was seen before", OutcomeOf(ninth));
    EXPECT_EQ(10, Kept()->serial);
    EXPECT_EQ("2.2.0-0140", OutcomeOf(tenth));

    const FeedSigner another;
    folder_.Write("feed.pem", another.PublicKey());
    EXPECT_EQ("nothing newer", OutcomeOf(another.Index(FeedPayload(1, {}))));
}

TEST_F(ReleaseCheck, TakesTheKeptIndexWhileTheServerHasNoOther) {
    for (const auto& [sent, asked] :
         std::map<std::string, std::string>{{"ETag: W/\"x\"\r\nLast-Modified: Sun", "If-None-Match: W/\"x\""},
                                            {"Last-Modified: Sun", "If-Modified-Since: Sun"}}) {
        const std::size_t before = server_.Requests().size();
        const auto& headers = sent;
        script_ = [this, before, &headers](const std::string&, std::size_t number) {
            return number == before ? Answer{HttpAnswer("200 OK\r\n" + headers, Index(1, "2.2.0-0140"))}
                                    : Answer{"HTTP/1.1 304 Not Modified\r\n\r\n", "x"};
        };
        settings_.conf.feedUrl = server_.Address() + "/" + std::to_string(before);
        settings_.installedVersion = "2.1.0-0130";
        EXPECT_EQ("2.2.0-0140", Outcome());
        EXPECT_EQ("2.2.0-0140", Outcome());
        settings_.installedVersion = "2.2.0-0140";
        EXPECT_EQ("nothing newer", Outcome());
        EXPECT_EQ(std::string::npos, server_.Requests().at(before).find("If-"));
        EXPECT_NE(std::string::npos, server_.Requests().at(before + 2).find("\r\n" + asked + "\r\n"));
    }
}

TEST(ChooseRelease, TakesTheNewestThatFits) {
    camvora::FeedIndex index;
    for (const auto& [version, lowestMain] :
         std::vector<std::pair<std::string, std::string>>{{"2.2.0-0140", ""},
                                                          {"2.10.0-0200", "3.2.0"},
                                                          {"2.3.0-0150", "3.1.0"},
                                                          {"3.0.0-0300", "4.0.0"}}) {
        index.releases.emplace_back();
        index.releases.back().version = version;
        index.releases.back().lowestMainVersion = lowestMain;
    }
    const std::vector<std::array<std::string, 3>> kChoices = {// installed, main package, chosen
                                                              {"2.1.0-0130", "3.2.0", "2.10.0-0200"},
                                                              {"2.1.0-0130", "3.1.9", "2.3.0-0150"},
                                                              {"2.1.0-0130", "1.0", "2.2.0-0140"},
                                                              {"2.1.0-0130", "4.0.0-1", "3.0.0-0300"},
                                                              {"2.10.0-0200", "3.9", ""},
                                                              {"", "1.0", "2.2.0-0140"},
                                                              {"9.0", "", ""}};
    for (const auto& [installed, main, chosen] : kChoices) {
        const auto release = ChooseRelease(index, installed, main);
        EXPECT_EQ(chosen, release ? release->version : "") << installed << " " << main;
    }
}

}  // namespace
