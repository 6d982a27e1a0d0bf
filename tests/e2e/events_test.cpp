// Notifications as server-sent events.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

namespace e2e {
namespace {

constexpr std::size_t kStreamLimit = 3;
constexpr char kSnapshot[] = "event: snapshot";
constexpr char kHeartbeat[] = "\n\n: ";

class EventsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        appliance_ = std::make_unique<Appliance>(
            Appliance::WithTestModule({"--stream-limit", std::to_string(kStreamLimit), "--heartbeat", "1"}));
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    static RawConnection OpenStream(const std::string& header = "") {
        RawConnection stream(appliance_->Url());
        stream.Send("GET /events HTTP/1.1\r\nAuthorization: Bearer " + appliance_->Token() + "\r\n" + header +
                    "\r\n");
        return stream;
    }

    // Opens one when a place is free.
    static RawConnection WaitForStream(std::string& begin) {
        for (;;) {
            RawConnection stream = OpenStream();
            begin = stream.ReceiveUntil("data");
            if (begin.find(kSnapshot) != std::string::npos) {
                begin += stream.ReceiveUntil("\n\n");
                return stream;
            }
        }
    }

    Answer Notify(const std::string& text) {
        Json::Value params = Param("text", text);
        params["type"] = 24;
        return owner_.Test("Notify", params);
    }

    // The id in the last event of `text`.
    static std::string LastId(const std::string& text) {
        const std::size_t begin = text.rfind("id: ") + 4;
        return text.substr(begin, text.find('\n', begin) - begin);
    }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> EventsTest::appliance_;

TEST_F(EventsTest, BeginWithASnapshotAndGoOnWithNotifications) {
    std::string begin;
    RawConnection stream = WaitForStream(begin);
    EXPECT_NE(std::string::npos, begin.find("text/event-stream"));
    EXPECT_NE(std::string::npos, begin.find(R"("shortName":"local_display")"));

    const Answer answer = Notify("one");
    const std::string event = stream.ReceiveUntil("third");
    EXPECT_NE(std::string::npos, event.find("event: notification"));
    EXPECT_NE(std::string::npos, event.find(R"("texts":["one","second","third"])"));
    EXPECT_NE(std::string::npos, event.find(R"("type":24)"));
    EXPECT_NE(std::string::npos, event.find(answer.requestId));
}

TEST_F(EventsTest, ResumeAfterTheLastOneSeen) {
    std::string begin;
    std::string seen;
    {
        RawConnection stream = WaitForStream(begin);
        Notify("seen");
        seen = LastId(stream.ReceiveUntil("seen"));
    }
    Notify("missed-1");
    Notify("missed-2");
    RawConnection resumed = OpenStream("Last-Event-ID: " + seen + "\r\n");
    const std::string events = resumed.ReceiveUntil("missed-2");
    EXPECT_LT(events.find(kSnapshot), events.find("missed-1"));
    EXPECT_NE(std::string::npos, events.find("missed-2"));
    EXPECT_EQ(std::string::npos, events.find("\"seen\""));
}

TEST_F(EventsTest, ResumeAfterALongAbsence) {
    constexpr int kMissed = 250;
    std::string begin;
    std::string seen;
    {
        RawConnection stream = WaitForStream(begin);
        Notify("seen");
        seen = LastId(stream.ReceiveUntil("seen"));
    }
    for (int i = 1; i <= kMissed; ++i) {
        Notify("missed-" + std::to_string(i) + ".");
    }
    RawConnection resumed = OpenStream("Last-Event-ID: " + seen + "\r\n");
    const std::string events = resumed.ReceiveUntil("missed-" + std::to_string(kMissed) + ".");
    for (int i = 1; i <= kMissed; ++i) {
        EXPECT_NE(std::string::npos, events.find("missed-" + std::to_string(i) + ".")) << i;
    }
}

TEST_F(EventsTest, ANewStreamTellsNothingOld) {
    Notify("old");
    std::string begin;
    RawConnection stream = WaitForStream(begin);
    const std::string heartbeat = stream.ReceiveUntil(kHeartbeat + 2);
    EXPECT_EQ(std::string::npos, (begin + heartbeat).find("\"old\""));
    EXPECT_NE(std::string::npos, heartbeat.find(kHeartbeat + 2));
}

TEST_F(EventsTest, HaveALimitAndADeadClientsPlaceIsFreed) {
    {
        std::vector<RawConnection> streams;
        std::string begin;
        for (std::size_t i = 0; i < kStreamLimit; ++i) {
            streams.push_back(WaitForStream(begin));
        }
        const std::string refusal = OpenStream().ReceiveUntil("}}");
        EXPECT_NE(std::string::npos, refusal.find("503 ")) << refusal;
        EXPECT_NE(std::string::npos, refusal.find("1014"));
        EXPECT_TRUE(owner_.Test("Echo").Succeeded());
    }
    const auto isFree = [] { return OpenStream().ReceiveUntil("data").find(kSnapshot) != std::string::npos; };
    EXPECT_TRUE(WaitUntil(isFree));
}

TEST_F(EventsTest, EndQuicklyWhenTheHostStops) {
    Appliance other(Appliance::WithTestModule());
    RawConnection stream(other.Url());
    stream.Send("GET /events HTTP/1.1\r\nAuthorization: Bearer " + other.Token() + "\r\n\r\n");
    EXPECT_NE(std::string::npos, stream.ReceiveUntil(kSnapshot).find(kSnapshot));
    const auto begin = std::chrono::steady_clock::now();
    other.Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
}

}  // namespace
}  // namespace e2e
