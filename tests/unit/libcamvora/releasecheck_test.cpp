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

struct BadFeed {
    const char* name;
    std::string (*index)(const FeedSigner& signer);
    const char* problem;
};

std::string OfAnotherAddOn(const FeedSigner& signer) {
    Json::Value payload = FeedPayload(1, {ReleaseEntry("2.2.0-0140")});
    payload["service"] = "local_display";
    return signer.Index(payload);
}

const BadFeed kBadFeeds[] = {
    {"unsigned", [](const FeedSigner&) { return std::string(R"({"payload":"{}"})"); },
     "the index has no good \"signature\""},
    {"signed_by_another_key", [](const FeedSigner&) { return FeedSigner().Index(FeedPayload(1, {})); },
     "the index is not signed by the key of the feed"},
    {"signature_of_another_length",
     [](const FeedSigner&) { return std::string(R"({"payload":"{}","signature":"AAAA"})"); },
     "the index is not signed by the key of the feed"},
    {"of_another_add_on", OfAnotherAddOn, "the index is that of another add-on"},
    {"html", [](const FeedSigner&) { return std::string("<html><body>Log in</body></html>"); },
     "the index is no JSON object"},
    {"payload_is_no_object", [](const FeedSigner& s) { return s.Index("text"); },
     "the index has no good \"payload\""},
};

class BadFeedTest : public ReleaseCheck, public testing::WithParamInterface<BadFeed> {};

TEST_P(BadFeedTest, FailsAndChangesNothing) {
    script_ = [this](const std::string&, std::size_t) {
        return Answer{HttpAnswer("200 OK\r\nETag: \"1\"", GetParam().index(signer_))};
    };
    EXPECT_EQ(GetParam().problem, Outcome());
    EXPECT_FALSE(Kept());
}

INSTANTIATE_TEST_SUITE_P(All, BadFeedTest, testing::ValuesIn(kBadFeeds),
                         [](const auto& c) { return c.param.name; });

struct BadMember {
    const char* member;
    Json::Value value;
};

TEST_F(ReleaseCheck, RefusesMembersOfTheWrongTypeOrBeyondTheirBounds) {
    const std::vector<BadMember> kBadMembers = {{"version", 5},
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
                                                {"releases", "none"}};
    Json::Value index;
    script_ = [this, &index](const std::string&, std::size_t) {
        return Answer{HttpAnswer("200 OK", signer_.Index(index))};
    };
    for (const BadMember& bad : kBadMembers) {
        index = FeedPayload(1, {ReleaseEntry("2.2.0-0140")});
        Json::Value& place = index.isMember(bad.member) ? index : index["releases"][0];
        place[bad.member] = bad.value;
        EXPECT_EQ("the index has no good \"" + std::string(bad.member) + "\"", Outcome())
            << JsonWrite(bad.value, true);
    }
    EXPECT_FALSE(Kept());
}

struct BadServer {
    const char* name;
    Answer answer;
    const char* problem;
};

const BadServer kBadServers[] = {
    {"failing", {HttpAnswer("500 Oh", "no")}, "the feed answers with status 500"},
    {"not_modified_without_being_asked",
     {"HTTP/1.1 304 Not Modified\r\n\r\n"},
     "the feed answers with status 304"},
    {"redirecting_in_a_circle",
     {HttpAnswer("302 Found\r\nLocation: device_pack.json", "")},
     "the feed cannot be read: it redirects too often"},
    {"redirecting_to_a_file",
     {HttpAnswer("302 Found\r\nLocation: file:///etc/passwd", "")},
     "the feed cannot be read: the address is none of the web"},
    {"endless",
     {"HTTP/1.1 200 OK\r\n\r\n", std::string(64 << 10, ' '), std::chrono::milliseconds(0)},
     "the index is too large"},
    {"dripping", {"HTTP/1.1 200 OK\r\n\r\n", " "}, "the feed cannot be read: it is too slow"},
    {"dripping_in_its_head", {"HTTP/1.1 200 OK\r\nX: ", "x"}, "the feed cannot be read: it is too slow"},
    {"cut",
     {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{"},
     "the feed cannot be read: the connection ended without a whole answer"},
};

class BadServerTest : public ReleaseCheck, public testing::WithParamInterface<BadServer> {};

TEST_P(BadServerTest, FailsInTimeAndChangesNothing) {
    script_ = [](const std::string&, std::size_t) { return GetParam().answer; };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(GetParam().problem, Outcome());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4 * settings_.checkLimit);
    EXPECT_FALSE(Kept());
}

INSTANTIATE_TEST_SUITE_P(All, BadServerTest, testing::ValuesIn(kBadServers),
                         [](const auto& c) { return c.param.name; });

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
    int serial = 10;
    script_ = [this, &serial](const std::string&, std::size_t) {
        return Answer{HttpAnswer("200 OK", Index(serial, "2.2.0-0140"))};
    };
    EXPECT_EQ("2.2.0-0140", Outcome());
    serial = 9;
    EXPECT_EQ("the index is older than one that was seen before", Outcome());
    settings_.conf.feedUrl = server_.Address() + "/mirror";
    EXPECT_EQ("the index is older than one that was seen before", Outcome());
    EXPECT_EQ(10, Kept()->serial);
    serial = 10;
    EXPECT_EQ("2.2.0-0140", Outcome());

    const FeedSigner another;
    folder_.Write("feed.pem", another.PublicKey());
    script_ = [&another](const std::string&, std::size_t) {
        return Answer{HttpAnswer("200 OK", another.Index(FeedPayload(1, {})))};
    };
    EXPECT_EQ("nothing newer", Outcome());
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
