// The file of the diagnostic log, and the lines that are printed to it.
#include "children.h"
#include "libcamvora/jsonobject.h"
#include "libcamvora/logfile.h"
#include "libcamvora/logline.h"
#include "libcamvora/logprint.h"
#include "libcamvora/requestid.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace {

class LogFile : public testing::Test {
protected:
    const TemporaryFolder folder_;
    const camvora::LogFile log_{folder_.PathOf("log")};
};

std::string LineOf(const std::string& requestId, const std::string& text) {
    camvora::SetRequestId(requestId);
    std::string line = camvora::FormatLogLine({"addons", 1, "Test", text.c_str()});
    camvora::SetRequestId("");
    return line;
}

TEST_F(LogFile, KeepsLinesOfManyProcessesApart) {
    constexpr int kProcesses = 8;
    constexpr int kLines = 100;
    const std::string text(3000, '"');
    ASSERT_EQ(kProcesses, CountSuccesses(kProcesses, [&](int number) {
                  for (int i = 0; i < kLines; ++i) {
                      log_.Append(LineOf("r" + std::to_string(number), text));
                  }
                  return true;
              }));
    for (int number = 0; number < kProcesses; ++number) {
        const Json::Value lines = log_.LinesOfRequest("r" + std::to_string(number));
        ASSERT_EQ(static_cast<unsigned>(kLines), lines.size());
        EXPECT_EQ(text, lines[0]["text"].asString());
    }
    EXPECT_EQ(std::filesystem::perms(0600), std::filesystem::status(folder_.PathOf("log")).permissions());
}

TEST_F(LogFile, GivesTheLinesOfOneRequestFromBothFiles) {
    log_.RotateIfLarger(0);  // nothing there yet
    log_.Append(LineOf("r1", "before"));
    log_.RotateIfLarger(1000);  // not large
    EXPECT_EQ("", folder_.Read("log.1"));
    log_.RotateIfLarger(0);
    EXPECT_EQ("", folder_.Read("log"));
    log_.Append(LineOf("r1", "after"));
    log_.Append(LineOf("r10", "another request"));
    log_.Append(LineOf("", "mentions r1"));
    const Json::Value lines = log_.LinesOfRequest("r1");
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("before", lines[0]["text"].asString());
    EXPECT_EQ("after", lines[1]["text"].asString());
}

TEST_F(LogFile, PassesOverDamagedLines) {
    folder_.Write("log",
                  std::string("{\"request\":\"r1\",\n\"r1\"\n[\"r1\"]\nr1\0\n{\"request\":[\"r1\"]}\n", 52) +
                      std::string(60000, '[') + "r1\n" + LineOf("r1", "cut short").substr(0, 90) +
                      LineOf("r1", "whole"));
    const Json::Value lines = log_.LinesOfRequest("r1");
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ("whole", lines[0]["text"].asString());
}

TEST_F(LogFile, GivesTheNewestOfVeryManyLines) {
    std::string content;
    for (int i = 0; i < 1500; ++i) {
        content += LineOf("r1", std::to_string(i));
    }
    folder_.Write("log", content);
    const Json::Value lines = log_.LinesOfRequest("r1");
    ASSERT_EQ(1000U, lines.size());
    EXPECT_EQ("500", lines[0]["text"].asString());
    EXPECT_EQ("1499", lines[999]["text"].asString());
}

// Prints as a handler does, and returns the line.
std::string Printed(const TemporaryFolder& folder, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    camvora::PrintToLog(folder.PathOf("sub/log").c_str(), "addons", 12, "HandleList", format, arguments);
    va_end(arguments);
    const int errnoAfter = errno;
    std::string line = folder.Read("sub/log");
    errno = errnoAfter;
    return line;
}

TEST(LogPrint, WritesEachMemberAndKeepsErrno) {
    const TemporaryFolder folder;
    camvora::SetRequestId("r-1");
    errno = EINTR;
    const std::string line = Printed(folder, "Camera[%d]: %s [%m]\n", 7, "closed");
    EXPECT_EQ(EINTR, errno);
    camvora::SetRequestId("");
    const std::regex expected(R"(\{"time":"20\d\d-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z","pid":)" +
                              std::to_string(getpid()) +
                              R"(,"request":"r-1","source":"addons","line":12,"function":"HandleList",)" +
                              R"("text":"Camera\[7\]: closed \[Interrupted system call\]"\}\n)");
    EXPECT_TRUE(std::regex_match(line, expected)) << line;
}

TEST(LogPrint, StaysOneLineOfPrintableAscii) {
    const std::vector<std::pair<std::string, std::string>> kTexts = {
        // printed, logged
        {"a\n{\"text\":\"forged\"}\n", "a\n{\"text\":\"forged\"}"}, {"\x1b[2J\r\b\x7f", "\x1b[2J\r\b\x7f"},
        {"Gerät \xf0\x9f\x93\xb7", "Gerät \xf0\x9f\x93\xb7"},       {"a\xff-b", "a\xef\xbf\xbd-b"},
        {std::string(100000, 'x'), std::string(4095, 'x')},
    };
    for (const auto& [text, logged] : kTexts) {
        const TemporaryFolder folder;
        std::string line = Printed(folder, "%s", text.c_str());
        ASSERT_FALSE(line.empty());
        ASSERT_EQ('\n', line.back());
        line.pop_back();
        EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; }))
            << line;
        const auto entry = camvora::ParseJsonObject(line);
        ASSERT_TRUE(entry) << line;
        EXPECT_EQ(logged, (*entry)["text"].asString());
    }
}

}  // namespace
