#include "client/location.h"

#include "support/temporaryfolder.h"

#include "failswith.h"
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace client {
namespace {

// Two places to look in.
class LocationTest : public testing::Test {
protected:
    LocationTest() {
        folder_.Write("token", "folder-token\n");
        folder_.Write(kAddressFile, "http://127.0.0.1:1111\n");
        emptyFolder_.Write("blank.txt", "  \r\n");
        emptyFolder_.Write("mine.txt", "my-token \r\nsecond line\n");
    }

    static void ExpectFailure(ExitStatus status, const std::string& text, const LocationOptions& options,
                              const std::string& programDir = "") {
        EXPECT_THAT([&] { Locate(options, programDir); }, FailsWith(status, text));
    }

    TemporaryFolder folder_;
    TemporaryFolder emptyFolder_;
    const std::string& dir_ = folder_.Path();
    const std::string& empty_ = emptyFolder_.Path();
};

TEST_F(LocationTest, AddressAndTokenAreReplacedOneByOne) {
    const Location moved = Locate({dir_, "http://[::1]:80/", ""}, empty_);
    EXPECT_EQ("http://[::1]:80", moved.url);
    EXPECT_EQ("folder-token", moved.token);
    const Location opened = Locate({"", "", empty_ + "/mine.txt"}, dir_);
    EXPECT_EQ("http://127.0.0.1:1111", opened.url);
    EXPECT_EQ("my-token", opened.token);
    EXPECT_EQ("", Locate({"", "http://h:1", ""}, empty_).token);
}

TEST_F(LocationTest, SaysWhatIsMissing) {
    ExpectFailure(ExitStatus::kUsage,
                  "Where is the appliance? Give --dir DIR or --host URL, or set CAMVORA_DIR", {}, empty_);
    ExpectFailure(ExitStatus::kUnreachable,
                  "The appliance in " + empty_ + " is not running. Start it with " + empty_ + "/launch",
                  {empty_, "", ""}, dir_);
    ExpectFailure(ExitStatus::kNotAuthorised,
                  "Cannot read the token in " + empty_ + "/token: No such file or directory",
                  {empty_, "http://h:1", ""});
    ExpectFailure(ExitStatus::kNotAuthorised, "There is no token in " + empty_ + "/blank.txt",
                  {dir_, "", empty_ + "/blank.txt"});
}

TEST_F(LocationTest, TakesOnlyPlainHttpAddresses) {
    for (const char* url : {"https://h:1", "h:1", "http://h", "http://h:1/path", "http://u@h:1", "http://:1",
                            "http://h:123456", "http://h h:1", "http://h:1\r\nX: y"}) {
        ExpectFailure(ExitStatus::kUsage,
                      "\"" + std::string(url) + "\" is not an address of the form http://HOST:PORT",
                      {dir_, url, ""});
    }
}

}  // namespace
}  // namespace client
