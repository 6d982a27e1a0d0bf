// How the program ends when somebody ends it.
#include "fakehost.h"
#include "programrun.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

const FakeReply kSuccess = {200, R"({"success":true,"data":{"list":[]}})", "", false};
constexpr char kList[] = "POST /api/ORVA.Camvora.AddOns/v1/List";

TEST(SignalsTest, InterruptEndsItWithNothingWritten) {
    FakeHost host({{kList, {200, "{", "", true}}});
    ProgramRun run({"--url", host.Url(), "--json", "list"});
    host.AwaitRequests(1);
    run.Interrupt();
    const Outcome outcome = run.Wait();
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ("camvoractl: Interrupted\n", outcome.err);
}

TEST(SignalsTest, ReaderThatIsGoneEndsItQuietly) {
    const FakeHost host({{kList, kSuccess}});
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    close(ends[0]);
    const Outcome outcome = ProgramRun({"--url", host.Url(), "list"}, {}, ends[1]).Wait();
    close(ends[1]);
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.err);
}

TEST(SignalsTest, FullDiskIsAFailure) {
    const FakeHost host({{kList, kSuccess}});
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    for (const char* form : {"--json", "--timeout=9"}) {
        const Outcome outcome = ProgramRun({"--url", host.Url(), "list", form}, {}, full).Wait();
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("camvoractl: Cannot write the outcome: No space left on device\n", outcome.err);
    }
    close(full);
}

}  // namespace
