#include "client/location.h"

#include "client/failure.h"
#include "fakeappliance.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace client {
namespace {

// Three appliances' worth of places to look in; each row says which of them count.
class LocationTest : public testing::Test {
protected:
    LocationTest() {
        dir_.Write("token", "folder-token\n");
        dir_.Write(kAddressFile, "http://127.0.0.1:1111\n");
        other_.Write("token", "other-token\n");
        other_.Write(kAddressFile, "http://127.0.0.1:2222\n");
        empty_.Write("mine.txt", "  \r\n");
        other_.Write("mine.txt", "my-token \r\nsecond line\n");
    }

    const std::string& Dir() const { return dir_.Path(); }
    const std::string& Other() const { return other_.Path(); }
    const std::string& Empty() const { return empty_.Path(); }

    static void ExpectFailure(ExitStatus status, const std::string& text, const LocationOptions& options,
                              const std::string& programDir) {
        try {
            Locate(options, programDir);
            ADD_FAILURE() << "was found instead of: " << text;
        } catch (const Failure& failure) {
            EXPECT_EQ(status, failure.status) << failure.what();
            EXPECT_EQ(text, failure.what());
        }
    }

private:
    TemporaryFolder dir_;
    TemporaryFolder other_;
    TemporaryFolder empty_;
};

TEST_F(LocationTest, NamedFolderComesBeforeTheProgramsOwn) {
    const Location named = Locate({Dir(), "", ""}, Other());
    EXPECT_EQ("http://127.0.0.1:1111", named.url);
    EXPECT_EQ("folder-token", named.token);
    EXPECT_EQ("start it with " + Dir() + "/launch", named.hint);
    EXPECT_EQ("other-token", Locate({}, Other()).token);
}

TEST_F(LocationTest, AddressAndTokenAreReplacedOneByOne) {
    const Location moved = Locate({Dir(), "http://[::1]:80/", ""}, "");
    EXPECT_EQ("http://[::1]:80", moved.url);
    EXPECT_EQ("folder-token", moved.token);
    const Location opened = Locate({Dir(), "", Other() + "/mine.txt"}, "");
    EXPECT_EQ("http://127.0.0.1:1111", opened.url);
    EXPECT_EQ("my-token", opened.token);
    EXPECT_EQ("", Locate({"", "http://h:1", ""}, Empty()).token);
}

TEST_F(LocationTest, SaysWhatIsMissing) {
    ExpectFailure(ExitStatus::kUsage, "Where is the appliance? Give --dir DIR or set CAMVORA_DIR", {},
                  Empty());
    ExpectFailure(ExitStatus::kUnreachable,
                  "The appliance in " + Empty() + " is not running. Start it with " + Empty() + "/launch",
                  {Empty(), "", ""}, Other());
    ExpectFailure(ExitStatus::kUnreachable, "There is no appliance in /no/such: it is not a folder",
                  {"/no/such", "", ""}, Other());
    ExpectFailure(ExitStatus::kNotAuthorised,
                  "Cannot read the token in " + Empty() + "/token: No such file or directory",
                  {Empty(), "http://h:1", ""}, "");
    ExpectFailure(ExitStatus::kNotAuthorised, "There is no token in " + Empty() + "/mine.txt",
                  {Dir(), "", Empty() + "/mine.txt"}, "");
    ExpectFailure(ExitStatus::kNotAuthorised, "Cannot read the token in " + Dir() + ": Is a directory",
                  {Dir(), "", Dir()}, "");
}

TEST_F(LocationTest, TakesOnlyPlainHttpAddresses) {
    for (const char* url : {"https://h:1", "h:1", "http://h", "http://h:1/path", "http://u@h:1", "http://:1",
                            "http://h:123456", "http://h h:1", "http://h:1\r\nX: y"}) {
        ExpectFailure(ExitStatus::kUsage,
                      "\"" + std::string(url) + "\" is not an address of the form http://HOST:PORT",
                      {Dir(), url, ""}, "");
    }
}

}  // namespace
}  // namespace client
