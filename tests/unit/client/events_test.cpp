// The stream of events, over connections that break.
#include "fakeappliance.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {

FakeReply Stream(const std::string& body, bool isEndless) {
    return {200, body, "r1", isEndless, "text/event-stream"};
}

std::string Data(const std::string& id, const std::string& type, const std::string& texts) {
    return R"({"id":)" + id + R"(,"texts":)" + texts + R"(,"time":"2026-03-01T12:03:07.123Z","type":)" +
           type + "}\n";
}

const std::string kStartOf6 = Data("5", "24", R"(["6","1","0"])");
const std::string kUpdated = Data("6", "24", R"(["9","2","0"])");
const std::string kOther = Data("7", "5", R"(["a"])");
const std::string kSnapshot = R"({"services":[{"name":"Display","service":6}]})"
                              "\n";

std::string Event(const std::string& id, const std::string& name, const std::string& data) {
    return "id: " + id + "\nevent: " + name + "\ndata: " + data + "\n";
}

// Two streams end, there is none for a moment, and one stays.
TEST(EventsCommandTest, GoesOnWhereTheConnectionBroke) {
    const std::string first = Event("4", "snapshot", kSnapshot) + Event("5", "notification", kStartOf6) +
                              Event("6", "notification", kUpdated);
    const std::string second = Event("6", "snapshot", kSnapshot) + ": still here\n\ndata: no JSON\n\n" +
                               Event("7", "notification", kOther);
    FakeAppliance appliance(
        {{"GET /events", InTurn({Stream(first, false), Error(503, R"({"code":1008,"data":null})"),
                                 Stream(second, false), Stream(": still here\n\n", true)})}});
    const Program run = appliance.Start("events");
    appliance.AwaitRequests(5);
    kill(run.Pid(), SIGINT);
    const Outcome outcome = run.Wait();
    EXPECT_EQ(130, outcome.status);
    EXPECT_EQ(
        "2026-03-01 12:03:07  Display  started\n"
        "2026-03-01 12:03:07  Service 9  updated\n"
        "2026-03-01 12:03:07  Notification of type 5  [\"a\"]\n",
        outcome.out);
    EXPECT_EQ(
        "The connection was lost; trying to connect again\n"
        "Connected again\n"
        "The connection was lost; trying to connect again\n"
        "camvoractl: Interrupted\n",
        outcome.err);

    const std::string events = "GET /events Bearer secret ";
    const std::vector<std::string> expected = {events, events + "6", "GET /log?request=r1 Bearer secret ",
                                               events + "6", events + "7"};
    EXPECT_EQ(expected, appliance.Requests());
}

}  // namespace
