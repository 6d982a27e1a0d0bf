#include "libcamvora/logfile.h"

#include "children.h"
#include "libcamvora/logline.h"
#include "libcamvora/requestid.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

namespace {

using camvora::LogFile;

std::string LineOf(const std::string& requestId, const std::string& text) {
    camvora::SetRequestId(requestId);
    std::string line = camvora::FormatLogLine({"addons", 1, "Test", text.c_str()});
    camvora::SetRequestId("");
    return line;
}

TEST(LogFile, IsReadableByItsOwnerOnly) {
    const TemporaryFolder folder;
    LogFile(folder.PathOf("log/camvora.log")).Append("{}\n");
    struct stat status {};
    ASSERT_EQ(0, stat(folder.PathOf("log/camvora.log").c_str(), &status));
    EXPECT_EQ(0600U, status.st_mode & 0777U);
}

TEST(LogFile, KeepsLinesOfManyProcessesApart) {
    constexpr int kProcesses = 8;
    constexpr int kLines = 100;
    const TemporaryFolder folder;
    const LogFile log(folder.PathOf("log"));
    const std::string text(3000, '"');
    ASSERT_EQ(kProcesses, CountSuccesses(kProcesses, [&](int number) {
                  for (int i = 0; i < kLines; ++i) {
                      log.Append(LineOf("r" + std::to_string(number), text));
                  }
                  return true;
              }));
    for (int number = 0; number < kProcesses; ++number) {
        const Json::Value lines = log.LinesOfRequest("r" + std::to_string(number));
        ASSERT_EQ(static_cast<unsigned>(kLines), lines.size());
        EXPECT_EQ(text, lines[0]["text"].asString());
    }
}

TEST(LogFile, GivesTheLinesOfOneRequestFromBothFiles) {
    const TemporaryFolder folder;
    const LogFile log(folder.PathOf("log"));
    log.Append(LineOf("r1", "before"));
    log.RotateIfLarger(0);
    log.Append(LineOf("r1", "after"));
    log.Append(LineOf("r10", "another request"));
    log.Append(LineOf("", "mentions r1"));
    const Json::Value lines = log.LinesOfRequest("r1");
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("before", lines[0]["text"].asString());
    EXPECT_EQ("after", lines[1]["text"].asString());
}

TEST(LogFile, PassesOverDamagedLines) {
    const TemporaryFolder folder;
    folder.Write("log",
                 std::string("{\"request\":\"r1\",\n\"r1\"\n[\"r1\"]\nr1\0\n{\"request\":[\"r1\"]}\n", 52) +
                     std::string(60000, '[') + "r1\n" + LineOf("r1", "whole"));
    const Json::Value lines = LogFile(folder.PathOf("log")).LinesOfRequest("r1");
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ("whole", lines[0]["text"].asString());
}

TEST(LogFile, GivesTheNewestOfVeryManyLines) {
    const TemporaryFolder folder;
    std::string content;
    for (int i = 0; i < 1500; ++i) {
        content += LineOf("r1", std::to_string(i));
    }
    folder.Write("log", content);
    const Json::Value lines = LogFile(folder.PathOf("log")).LinesOfRequest("r1");
    ASSERT_EQ(1000U, lines.size());
    EXPECT_EQ("500", lines[0]["text"].asString());
    EXPECT_EQ("1499", lines[999]["text"].asString());
}

TEST(LogFile, IsSetAsideOnlyWhenLarge) {
    const TemporaryFolder folder;
    const LogFile log(folder.PathOf("log"));
    log.RotateIfLarger(0);  // nothing there yet
    log.Append("{}\n");
    log.RotateIfLarger(3);
    EXPECT_EQ("{}\n", folder.Read("log"));
    log.RotateIfLarger(2);
    EXPECT_EQ("", folder.Read("log"));
    EXPECT_EQ("{}\n", folder.Read("log.1"));
    EXPECT_EQ(0U, log.LinesOfRequest("r1").size());
}

}  // namespace
