// The key reader and the pid file of an action process or a daemon.
#include "platform/plibc.h"

#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::nullopt_t kMissing = std::nullopt;

// What the reader gives with a buffer of `bufferSize` bytes. Two bytes behind the buffer show whether it
// stays inside.
std::optional<std::string> VersionIn(const std::string& path, int bufferSize = 256) {
    std::vector<char> buffer(static_cast<std::size_t>(bufferSize) + 2, '#');
    const int result = PLIBCFileGetKeyValue(path.c_str(), "version", buffer.data(), bufferSize, 0);
    EXPECT_EQ("##", std::string(buffer.end() - 2, buffer.end()));
    const std::string value = buffer.data();
    EXPECT_EQ(result == -1 ? 0U : static_cast<std::size_t>(result), value.size());
    return result == -1 ? kMissing : std::optional(value);
}

TEST(KeyValue, IsReadFromItsLine) {
    const TemporaryFolder folder;
    const std::vector<std::pair<std::string, std::optional<std::string>>> kContents = {
        {"version=\"1.2\"\n", "1.2"},
        {" \tversion\t =  1.2 \t\n", "1.2"},
        {"version=\" 1.2 \"\n", " 1.2 "},
        {"version=\"1.2\" # new\n", "1.2"},
        {"version=\"1.2\n", "\"1.2"},
        {"package=x\r\nversion=a=b\r\n", "a=b"},
        {"version=\n", ""},
        {"version\nversion=1\nversion=2\n", "1"},
        {"version_min=1\nmin_version=2\n#version=3\n", kMissing},
        {std::string("version=1\0002\n", 12), "1"},
        {"version=" + std::string(256, 'v'), std::string(255, 'v')},
    };
    for (const auto& [content, value] : kContents) {
        folder.Write("conf", content);
        EXPECT_EQ(value, VersionIn(folder.PathOf("conf"))) << content;
    }
}

TEST(KeyValue, StaysInsideSmallBuffers) {
    const TemporaryFolder folder;
    folder.Write("conf", "version=abc\n");
    EXPECT_EQ("ab", VersionIn(folder.PathOf("conf"), 3));
    EXPECT_EQ("", VersionIn(folder.PathOf("conf"), 1));
    char untouched = 'x';
    EXPECT_EQ(-1, PLIBCFileGetKeyValue(folder.PathOf("conf").c_str(), "version", &untouched, 0, 0));
    EXPECT_EQ('x', untouched);
}

TEST(KeyValue, ReadsNothingButPlainFilesAndNeverBlocks) {
    const TemporaryFolder folder;
    folder.Write("plain", "version=1\n");
    folder.Write("huge", "version=1\n");
    ASSERT_EQ(0, truncate(folder.PathOf("huge").c_str(), 1LL << 40));
    ASSERT_EQ(0, mkfifo(folder.PathOf("fifo").c_str(), 0600));
    fs::create_symlink("plain", folder.PathOf("link"));
    for (const char* name : {"missing", "", "huge", "fifo", "link"}) {
        EXPECT_EQ(kMissing, VersionIn(folder.PathOf(name))) << name;
    }
}

class PidFile : public testing::Test {
protected:
    std::ptrdiff_t FileCount() const {
        return std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator());
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.PathOf("cv_x.pid");
};

TEST_F(PidFile, ReplacesWhatLiesThereAndLeavesNothingElse) {
    const std::string own = std::to_string(getpid());
    folder_.Write("other", "untouched");
    fs::create_symlink("other", path_);
    folder_.Write("cv_x.pid.new", "rests of a killed writer");
    EXPECT_EQ(0, PLIBCProcPidFileCreate(path_.c_str()));
    EXPECT_EQ(own + "\n", folder_.Read("cv_x.pid"));
    EXPECT_EQ("untouched", folder_.Read("other"));
    EXPECT_EQ(2, FileCount());
}

TEST_F(PidFile, FailsWhereItCannotBeWritten) {
    fs::create_directory(path_);
    EXPECT_EQ(-1, PLIBCProcPidFileCreate(path_.c_str()));
    EXPECT_EQ(1, FileCount());
    EXPECT_EQ(-1, PLIBCProcPidFileCreate(folder_.PathOf("no folder/x.pid").c_str()));
}

}  // namespace
