// How the program ends when nobody takes what it writes.
#include "fakeappliance.h"

#include <gtest/gtest.h>

namespace {

TEST(OutputTest, EndsQuietlyWhenItsReaderIsGone) {
    const FakeAppliance appliance(
        {{"List", Success(R"({"list":[]})")},
         {"GET /events", {200, ": still here\n\n", "", true, "text/event-stream"}}});
    for (const std::string line : {"list", "events"}) {
        EXPECT_EQ("0\n", appliance.RunInShell("(sleep 0.2; camvoractl " + line + "; echo $? >&2) | :").err);
    }
}

TEST(OutputTest, FailsOnAFullDisk) {
    const FakeAppliance appliance({{"List", Success(R"({"list":[]})")}});
    for (const std::string line : {"list", "list --json"}) {
        const Outcome outcome = appliance.RunInShell("camvoractl " + line + " >/dev/full");
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("camvoractl: Cannot write the outcome: No space left on device\n", outcome.err);
    }
}

}  // namespace
