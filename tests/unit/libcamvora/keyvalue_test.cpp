#include "platform/plibc.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace {

constexpr int kMissing = -1;

// What the reader gives for `key` with a buffer of `bufferSize` bytes. Two bytes behind the buffer show
// whether it stays inside.
struct Answer {
    int result;
    std::string value;
};

Answer ValueOf(const std::string& path, const char* key, int bufferSize = 256) {
    constexpr char kGuard = '#';
    std::vector<char> buffer(static_cast<std::size_t>(bufferSize) + 2, kGuard);
    const int result = PLIBCFileGetKeyValue(path.c_str(), key, buffer.data(), bufferSize, 0);
    EXPECT_EQ(kGuard, buffer[static_cast<std::size_t>(bufferSize)]);
    EXPECT_EQ(kGuard, buffer[static_cast<std::size_t>(bufferSize) + 1]);
    return {result, buffer.data()};
}

struct LineCase {
    const char* name;
    std::string content;
    int result;
    std::string value;
};

const LineCase kLineCases[] = {
    {"quoted", "version=\"1.2\"\n", 3, "1.2"},
    {"bare", "version=1.2\n", 3, "1.2"},
    {"blanks_around_both", " \tversion\t =  1.2 \t\n", 3, "1.2"},
    {"blanks_inside_quotes_stay", "version=\" 1.2 \"\n", 5, " 1.2 "},
    {"behind_the_quotes_is_dropped", "version=\"1.2\" # new\n", 3, "1.2"},
    {"one_quote_is_part_of_the_value", "version=\"1.2\n", 4, "\"1.2"},
    {"equals_sign_in_value", "version=a=b\n", 3, "a=b"},
    {"carriage_return_line_ends", "package=x\r\nversion=1.2\r\n", 3, "1.2"},
    {"last_line_without_end", "package=x\nversion=1.2", 3, "1.2"},
    {"empty_value", "version=\n", 0, ""},
    {"empty_quotes", "version=\"\"\n", 0, ""},
    {"first_of_two_holds", "version=1\nversion=2\n", 1, "1"},
    {"comment_line", "#version=1\nversion=2\n", 1, "2"},
    {"longer_key_is_another", "version_min=1\nmin_version=2\n", kMissing, ""},
    {"letter_case_counts", "Version=1\n", kMissing, ""},
    {"line_without_equals_sign", "version\n", kMissing, ""},
    {"value_ends_at_nul", std::string("version=1\0002\n", 12), 1, "1"},
    {"empty_file", "", kMissing, ""},
    {"longest_value", "version=" + std::string(255, 'v'), 255, std::string(255, 'v')},
    {"longer_value_is_cut", "version=" + std::string(256, 'v'), 255, std::string(255, 'v')},
};

class KeyValueLine : public testing::TestWithParam<LineCase> {};

TEST_P(KeyValueLine, IsRead) {
    const TemporaryFolder folder;
    folder.Write("conf", GetParam().content);
    const Answer answer = ValueOf(folder.PathOf("conf"), "version");
    EXPECT_EQ(GetParam().result, answer.result);
    EXPECT_EQ(GetParam().value, answer.value);
}

INSTANTIATE_TEST_SUITE_P(All, KeyValueLine, testing::ValuesIn(kLineCases),
                         [](const auto& line) { return std::string(line.param.name); });

TEST(KeyValue, StaysInsideSmallBuffers) {
    const TemporaryFolder folder;
    folder.Write("conf", "version=abc\n");
    EXPECT_EQ("ab", ValueOf(folder.PathOf("conf"), "version", 3).value);
    EXPECT_EQ("", ValueOf(folder.PathOf("conf"), "version", 1).value);
    char untouched = 'x';
    EXPECT_EQ(kMissing, PLIBCFileGetKeyValue(folder.PathOf("conf").c_str(), "version", &untouched, 0, 0));
    EXPECT_EQ('x', untouched);
}

struct FileCase {
    const char* name;
    void (*make)(const TemporaryFolder& folder, const std::string& path);
};

// None of these is read, and none of them may block the reader.
const FileCase kFileCases[] = {
    {"missing", [](const TemporaryFolder&, const std::string&) {}},
    {"folder", [](const TemporaryFolder&, const std::string& path) { mkdir(path.c_str(), 0700); }},
    {"fifo", [](const TemporaryFolder&, const std::string& path) { mkfifo(path.c_str(), 0600); }},
    {"link_to_a_file",
     [](const TemporaryFolder& folder, const std::string& path) {
         folder.Write("target", "version=1\n");
         (void)!symlink(folder.PathOf("target").c_str(), path.c_str());
     }},
    {"huge",
     [](const TemporaryFolder& folder, const std::string& path) {
         folder.Write("conf", "version=1\n");
         (void)!truncate(path.c_str(), 1LL << 40);
     }},
};

class KeyValueFile : public testing::TestWithParam<FileCase> {};

TEST_P(KeyValueFile, IsNotRead) {
    const TemporaryFolder folder;
    GetParam().make(folder, folder.PathOf("conf"));
    const Answer answer = ValueOf(folder.PathOf("conf"), "version");
    EXPECT_EQ(kMissing, answer.result);
    EXPECT_EQ("", answer.value);
}

INSTANTIATE_TEST_SUITE_P(All, KeyValueFile, testing::ValuesIn(kFileCases),
                         [](const auto& file) { return std::string(file.param.name); });

}  // namespace
