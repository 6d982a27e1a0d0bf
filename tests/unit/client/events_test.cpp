// The stream of events, over connections that break.
#include "fakeappliance.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

FakeReply Stream(const std::string& body, bool isEndless) {
    return {200, body, "r1", isEndless, {}, "text/event-stream"};
}

std::string Notification(const std::string& id, const std::string& type, const std::string& texts) {
    return "id: " + id + "\nevent: notification\ndata: {\"id\":" + id + ",\"texts\":" + texts +
           ",\"time\":\"2026-03-01T12:03:07.123Z\",\"type\":" + type + "}\n\n";
}

std::string Snapshot(const std::string& id) {
    return "id: " + id + "\nevent: snapshot\ndata: {\"services\":[{\"service\":6,\"name\":\"Display\"}]}\n\n";
}

// Two streams that end, a moment in which there is none, and one that stays.
std::map<std::string, FakeReply> BreakingStreams() {
    const std::string first = Snapshot("4") + Notification("5", "24", R"(["6","1","0"])") +
                              Notification("6", "24", R"(["9","2","0"])");
    const std::string second = Snapshot("6") + ": still here\n\ndata: no JSON\n\n" +
                               Notification("7", "24", R"(["6","0","0"])") +
                               Notification("8", "5", R"(["a"])");
    return {{kEvents, InTurn({Stream(first, false), Error(503, R"({"code":1008,"data":null})"),
                              Stream(second, false), Stream(": still here\n\n", true)})}};
}

Outcome RunUntilItHasConnected(FakeAppliance& appliance, const std::string& line) {
    ProgramRun run = appliance.Start(line);
    appliance.Host().AwaitRequests(5);
    run.Interrupt();
    return run.Wait();
}

TEST(EventsCommandTest, GoesOnWhereTheConnectionBroke) {
    FakeAppliance appliance(BreakingStreams());
    const Outcome outcome = RunUntilItHasConnected(appliance, "events");
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ(
        "2026-03-01 12:03:07  Display  started\n"
        "2026-03-01 12:03:07  Service 9  updated\n"
        "2026-03-01 12:03:07  Display  stopped\n"
        "2026-03-01 12:03:07  Notification of type 5  [\"a\"]\n",
        outcome.out);
    EXPECT_EQ(
        "The connection was lost; trying to connect again\n"
        "Connected again\n"
        "The connection was lost; trying to connect again\n"
        "camvoractl: Interrupted\n",
        outcome.err);

    const std::string events = kEvents + std::string(" Bearer secret ");
    const std::vector<std::string> expected = {events, events + "6", kLog + std::string(" Bearer secret "),
                                               events + "6", events + "8"};
    EXPECT_EQ(expected, appliance.Host().Requests());
}

TEST(EventsCommandTest, WritesALinePerEventForPrograms) {
    FakeAppliance appliance(BreakingStreams());
    const Outcome outcome = RunUntilItHasConnected(appliance, "events --json");
    const std::string snapshot = "{\"services\":[{\"name\":\"Display\",\"service\":6}]}\n";
    EXPECT_EQ(snapshot + R"({"id":5,"texts":["6","1","0"],"time":"2026-03-01T12:03:07.123Z","type":24})" +
                  "\n" + R"({"id":6,"texts":["9","2","0"],"time":"2026-03-01T12:03:07.123Z","type":24})" +
                  "\n" + snapshot +
                  R"({"id":7,"texts":["6","0","0"],"time":"2026-03-01T12:03:07.123Z","type":24})" + "\n" +
                  R"({"id":8,"texts":["a"],"time":"2026-03-01T12:03:07.123Z","type":5})" + "\n",
              outcome.out);
    EXPECT_EQ("camvoractl: Interrupted\n", outcome.err);
}

TEST(EventsCommandTest, EndsWhenNobodyReadsAnyMore) {
    const FakeAppliance appliance({{kEvents, Stream(": still here\n\n", true)}});
    int ends[2];
    ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
    close(ends[0]);
    const Outcome outcome = ProgramRun({"--dir", appliance.Dir(), "events"}, {}, ends[1]).Wait();
    close(ends[1]);
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.err);
}

}  // namespace
