// "feed key" and "feed build": what appliances will find, and what is not published.
#include "support/packages.h"

#include "fakeappliance.h"

#include <gtest/gtest.h>
#include <json/json.h>
#include <sys/stat.h>

#include <filesystem>
#include <sstream>

namespace {

std::string Conf(const std::string& version) {
    return "version=\"" + version + "\"\nmaintainer=\"Me\"\ncv_min_ver=\"3.0\"\n";
}

std::string DevicePack(const std::string& version) {
    return MakePackage(kDevicePackInfo, {{"device_pack/conf", Conf(version)}});
}

Json::Value Parsed(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

class FeedTest : public testing::Test {
protected:
    FeedTest() {
        std::filesystem::create_directory(feed_);
        StartClient("feed key " + key_).Wait();
    }

    Outcome Build() const { return StartClient("feed build " + feed_ + " --key " + key_).Wait(); }

    std::string Index() const { return dir_.Read("feed/device_pack.json"); }

    Json::Value Payload() const { return Parsed(Parsed(Index())["payload"].asString()); }

    TemporaryFolder dir_;
    const std::string feed_ = dir_.PathOf("feed");
    const std::string key_ = dir_.PathOf("key");
};

TEST_F(FeedTest, PublishesWhatLiesThereNewestFirst) {
    dir_.Write("feed/a.spk", DevicePack("2.9-1"));
    dir_.Write("feed/b.spk", DevicePack("2.10-1"));
    dir_.Write("feed/b.notes", "Better\nmore \u00e4");
    const Outcome outcome = Build();
    EXPECT_EQ(0, outcome.status) << outcome.err;
    const Json::Value payload = Payload();
    ASSERT_EQ(2U, payload["releases"].size());
    const Json::Value& newest = payload["releases"][0];
    EXPECT_EQ("b.spk", newest["file"].asString());
    EXPECT_EQ("3.0", newest["lowestMainVersion"].asString());
    EXPECT_EQ("Better\nmore \u00e4", newest["notes"].asString());
}

TEST_F(FeedTest, GrowsItsSerialKeepsDatesAndWithdraws) {
    dir_.Write("feed/a.spk", DevicePack("2.9-1"));
    Build();
    Json::Value index = Parsed(Index());
    Json::Value payload = Payload();
    payload["serial"] = Json::Int64{1} << 40U;
    payload["releases"][0]["date"] = "2020-01-31";
    index["payload"] = payload.toStyledString();
    dir_.Write("feed/device_pack.json", index.toStyledString());
    Build();
    EXPECT_EQ((Json::Int64{1} << 40U) + 1, Payload()["serial"].asInt64());
    EXPECT_EQ("2020-01-31", Payload()["releases"][0]["date"].asString());
    std::filesystem::remove(feed_ + "/a.spk");
    EXPECT_EQ(0, Build().status);
    EXPECT_EQ(0U, Payload()["releases"].size());
}

struct UnpublishedCase {
    const char* name;
    const char* file;
    std::string content;
    int status;
    const char* words;
};

const UnpublishedCase kUnpublishedCases[] = {
    {"damaged_package", "b.spk", DevicePack("2.10-1").substr(0, 700), 4, "does not keep the rules"},
    {"same_version_twice", "b.spk", DevicePack("2.09-1"), 4, "are of the same version"},
    {"name_that_is_no_address", "b c.spk", DevicePack("2.10-1"), 4, "b c.spk cannot be published"},
    {"version_that_is_no_name", "b.spk", DevicePack("2.10 1"), 4, "b.spk cannot be published"},
    {"endless_notes", "a.notes", std::string(16 * 1024 + 1, 'x'), 4, "is larger than 16 KiB"},
    {"other_add_on_is_no_index", "local_display.json", "{}", 1, "is no index of a feed"},
    {"no_key", "../key", "", 1, "is no private key of a feed"},
};

class FeedUnpublishedTest : public FeedTest, public testing::WithParamInterface<UnpublishedCase> {};

TEST_P(FeedUnpublishedTest, LeavesTheLastIndex) {
    dir_.Write("feed/a.spk", DevicePack("2.9-1"));
    Build();
    const std::string before = Index();
    dir_.Write(std::string("feed/") + GetParam().file, GetParam().content);
    const Outcome outcome = Build();
    EXPECT_EQ(GetParam().status, outcome.status);
    EXPECT_NE(std::string::npos, outcome.err.find(GetParam().words)) << outcome.err;
    EXPECT_EQ(before, Index());
}

INSTANTIATE_TEST_SUITE_P(All, FeedUnpublishedTest, testing::ValuesIn(kUnpublishedCases),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_F(FeedTest, KeepsItsPrivateKeyToItselfAndWritesOverNone) {
    struct stat status {};
    ASSERT_EQ(0, stat(key_.c_str(), &status));
    EXPECT_EQ(0600U, status.st_mode & 0777U);
    const std::string before = dir_.Read("key");
    EXPECT_EQ(1, StartClient("feed key " + key_).Wait().status);
    EXPECT_EQ(before, dir_.Read("key"));
    EXPECT_EQ(3, Build().status) << "nothing to publish";
}

}  // namespace
