// The fake itself: how it records, answers and stands in for processes and time.
#include "fake/journal.h"
#include "fake/processes.h"
#include "fake/script.h"
#include "fake/session.h"
#include "platform/log.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <string>

namespace {

struct TextCase {
    const char* name;
    std::string text;
    const char* written;
};

const TextCase kTextCases[] = {
    {"word", "/tmp/cv_x.lock", "/tmp/cv_x.lock"},
    {"empty", "", "''"},
    {"blank", "a b", "'a b'"},
    {"end_of_line", "a\n", "'a\\n'"},
    {"control_characters", std::string("\0\x1b", 2), "'\\x00\\x1b'"},
    {"quote_and_backslash", "'\\", "'\\'\\\\'"},
};

class JournalText : public testing::TestWithParam<TextCase> {};

TEST_P(JournalText, StaysOnOneLine) {
    EXPECT_EQ(GetParam().written, fake::Text(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(, JournalText, testing::ValuesIn(kTextCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FakeSession, BeginsAfresh) {
    {
        const fake::Session earlier;
        fake::Answer("f", 2);
        fake::SetClock(1);
        fake::Record("f");
    }
    const fake::Session session;
    EXPECT_EQ(1, fake::NextAnswer("f", 1).asInt());
    EXPECT_LT(1, std::time(nullptr));
    EXPECT_EQ("", fake::Journal());
}

class Fake : public testing::Test {
    fake::Session session_;
};

TEST_F(Fake, AnswersOnceThenAlwaysThenByDefault) {
    EXPECT_EQ(1, fake::NextAnswer("f", 1).asInt());
    fake::Answer("f", 2);
    fake::AnswerOnce("f", 3);
    fake::AnswerOnce("f", 4);
    EXPECT_EQ(3, fake::NextAnswer("f", 1).asInt());
    EXPECT_EQ(4, fake::NextAnswer("f", 1).asInt());
    EXPECT_EQ(2, fake::NextAnswer("f", 1).asInt());
    EXPECT_EQ(1, fake::NextAnswer("g", 1).asInt());
}

TEST_F(Fake, RecordsForkedChildrenInTrueOrder) {
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const pid_t grandchild = fork();
        if (grandchild == 0) {
            fake::Record("work");
            _exit(3);
        }
        waitpid(grandchild, nullptr, 0);
        _exit(0);
    }
    int status = -1;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
    EXPECT_EQ(fake::Lines({"fork", "> setsid", "> fork", "> > work", "> > _exit 3", "> waitpid child1",
                           "> _exit 0", "waitpid child1"}),
              fake::Journal());
}

TEST_F(Fake, FailsWithTheErrorAskedFor) {
    fake::FailOnce("fork", EAGAIN);
    EXPECT_EQ(-1, fork());
    EXPECT_EQ(EAGAIN, errno);

    fake::FailOnce("setsid", EPERM);
    EXPECT_EQ(-1, setsid());
    EXPECT_EQ(EPERM, errno);
}

TEST_F(Fake, InterruptedWaitCanBeRepeated) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    fake::FailOnce("waitpid", EINTR);
    EXPECT_EQ(-1, waitpid(child, nullptr, 0));
    EXPECT_EQ(EINTR, errno);
    EXPECT_EQ(child, waitpid(child, nullptr, 0));
}

TEST_F(Fake, SleepMovesAStoppedClock) {
    fake::SetClock(1000);
    EXPECT_EQ(0U, sleep(3600));
    std::time_t now = 0;
    EXPECT_EQ(4600, std::time(&now));
    EXPECT_EQ(4600, now);
    EXPECT_EQ(fake::Lines({"sleep 3600"}), fake::Journal());
}

TEST_F(Fake, LogTextCarriesTheCallersError) {
    errno = ENOENT;
    // "%m" is the C library's own, not ISO C++.
    __extension__ CVPrintf(0, nullptr, nullptr, "source", 1, "Function", "%d [%m]\n", 7);
    EXPECT_EQ(fake::Lines({"CVPrintf 0 null null source Function '7 [No such file or directory]\\n'"}),
              fake::Journal());
}

}  // namespace
