#include "libcamvora/logprint.h"
#include "libcamvora/requestid.h"
#include "support/temporaryfolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/reader.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <regex>
#include <string>

namespace {

void Print(const std::string& path, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    camvora::PrintToLog(path.c_str(), "addons", 12, "HandleList", format, arguments);
    va_end(arguments);
}

Json::Value Parsed(const std::string& line) {
    Json::Value entry;
    std::string errors;
    EXPECT_TRUE(Json::Reader().parse(line, entry)) << line;
    return entry;
}

TEST(LogPrint, WritesEachMember) {
    const TemporaryFolder folder;
    camvora::SetRequestId("r-1");
    Print(folder.PathOf("log"), "Camera[%d]: %s\n", 7, "closed");
    camvora::SetRequestId("");
    const Json::Value entry = Parsed(folder.Read("log"));
    EXPECT_EQ(7U, entry.size());
    EXPECT_TRUE(
        std::regex_match(entry["time"].asString(), std::regex(R"(20\d\d-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z)")));
    EXPECT_EQ(getpid(), entry["pid"].asInt());
    EXPECT_EQ("r-1", entry["request"].asString());
    EXPECT_EQ("addons", entry["source"].asString());
    EXPECT_EQ(12, entry["line"].asInt());
    EXPECT_EQ("HandleList", entry["function"].asString());
    EXPECT_EQ("Camera[7]: closed", entry["text"].asString());
}

TEST(LogPrint, ExpandsErrnoOfTheCallerAndKeepsIt) {
    const TemporaryFolder folder;
    ASSERT_EQ(-1, open("/nonexistent/file", O_RDONLY | O_CLOEXEC));
    Print(folder.PathOf("sub/log"), "Failed to open [%m]\n");  // makes the folder in between
    EXPECT_EQ(ENOENT, errno);
    EXPECT_EQ("Failed to open [No such file or directory]",
              Parsed(folder.Read("sub/log"))["text"].asString());
}

TEST(LogPrint, KeepsErrnoWhereTheLogCannotBeWritten) {
    errno = EINTR;
    Print("/nonexistent/sub/log", "lost\n");
    EXPECT_EQ(EINTR, errno);
}

struct TextCase {
    const char* name;
    std::string text;
    std::string logged;
};

const TextCase kTextCases[] = {
    {"one_final_newline_goes", "a\n\n", "a\n"},
    {"empty", "", ""},
    {"forged_line", "a\n{\"text\":\"forged\"}\n", "a\n{\"text\":\"forged\"}"},
    {"quotes_and_backslashes", R"("\")", R"("\")"},
    {"terminal_sequences", "\x1b[2J\r\b\x7f", "\x1b[2J\r\b\x7f"},
    {"utf8_stays", "Gerät \xf0\x9f\x93\xb7", "Gerät \xf0\x9f\x93\xb7"},
    {"lone_byte_is_replaced",
     "a\xff"
     "b",
     "a\xef\xbf\xbd"
     "b"},
    {"half_a_character_is_replaced", "a\xe2\x82", "a\xef\xbf\xbd\xef\xbf\xbd"},
    {"long_text_is_cut", std::string(100000, 'x'), std::string(4095, 'x')},
};

class LogText : public testing::TestWithParam<TextCase> {};

TEST_P(LogText, StaysOneLineOfPrintableAscii) {
    const TemporaryFolder folder;
    Print(folder.PathOf("log"), "%s", GetParam().text.c_str());
    std::string line = folder.Read("log");
    ASSERT_FALSE(line.empty());
    ASSERT_EQ('\n', line.back());
    line.pop_back();
    EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; })) << line;
    EXPECT_EQ(GetParam().logged, Parsed(line)["text"].asString());
}

INSTANTIATE_TEST_SUITE_P(All, LogText, testing::ValuesIn(kTextCases),
                         [](const auto& text) { return std::string(text.param.name); });

}  // namespace
