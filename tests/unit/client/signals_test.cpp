// How the program ends when somebody ends it, or stops to take what it writes.
#include "fakeappliance.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

namespace {

TEST(SignalsTest, InterruptEndsItWithNothingWritten) {
    FakeAppliance appliance({{"List", {200, "{", "", true}}});
    const Program run = appliance.Start("list --json");
    appliance.AwaitRequests(1);
    kill(run.Pid(), SIGINT);
    const Outcome outcome = run.Wait();
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ("", outcome.out);
    EXPECT_EQ("camvoractl: Interrupted\n", outcome.err);
}

TEST(SignalsTest, ReaderThatIsGoneEndsItQuietly) {
    const FakeAppliance appliance(
        {{"List", Success(R"({"list":[]})")},
         {"GET /events", {200, ": still here\n\n", "", true, "text/event-stream"}}});
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    close(ends[0]);
    for (const char* line : {"list", "events"}) {
        const Outcome outcome = appliance.Start(line, ends[1]).Wait();
        EXPECT_EQ(0, outcome.status) << line;
        EXPECT_EQ("", outcome.err) << line;
    }
    close(ends[1]);
}

TEST(SignalsTest, FullDiskIsAFailure) {
    const FakeAppliance appliance({{"List", Success(R"({"list":[]})")}});
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    for (const char* line : {"list", "list --json"}) {
        const Outcome outcome = appliance.Start(line, full).Wait();
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("camvoractl: Cannot write the outcome: No space left on device\n", outcome.err);
    }
    close(full);
}

}  // namespace
