// Notifications as server-sent events.
#include "e2e/appliance.h"
#include "e2e/processes.h"
#include "e2e/rawconnection.h"

namespace e2e {
namespace {

constexpr std::size_t kStreamLimit = 3;
constexpr char kSnapshot[] = "event: snapshot";
constexpr char kHeartbeat[] = ": still here";

class EventsTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() {
        Start(
            Appliance::WithTestModule({"--stream-limit", std::to_string(kStreamLimit), "--heartbeat", "1"}));
    }

    static RawConnection Open(const std::string& headers = "") {
        return OpenStream(appliance_->Url(), appliance_->Token(), headers);
    }

    // Opens one when a place is free. `begin` gets what comes with the snapshot.
    static RawConnection WaitForStream(std::string& begin) {
        for (;;) {
            RawConnection stream = Open();
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

    std::string begin_;
};

TEST_F(EventsTest, BeginWithASnapshotAndGoOnWithNotifications) {
    RawConnection stream = WaitForStream(begin_);
    EXPECT_NE(std::string::npos, begin_.find("text/event-stream"));
    EXPECT_NE(std::string::npos, begin_.find(R"("shortName":"local_display")"));

    const Answer answer = Notify("one");
    const std::string event = stream.ReceiveUntil("third");
    for (const std::string& part :
         {std::string("event: notification"), answer.requestId,
          std::string(R"("texts":["one","second","third"])"), std::string(R"("type":24)")}) {
        EXPECT_NE(std::string::npos, event.find(part)) << event;
    }
}

TEST_F(EventsTest, ResumeAfterALongAbsence) {
    constexpr int kMissed = 250;  // more than are read at once
    std::string seen;
    {
        RawConnection stream = WaitForStream(begin_);
        Notify("seen");
        seen = LastId(stream.ReceiveUntil("third"));
    }
    for (int i = 1; i <= kMissed; ++i) {
        Notify("missed-" + std::to_string(i) + ".");
    }
    RawConnection resumed = Open("Last-Event-ID: " + seen + "\r\n");
    const std::string events = resumed.ReceiveUntil("missed-" + std::to_string(kMissed) + ".");
    EXPECT_LT(events.find(kSnapshot), events.find("missed-1."));
    EXPECT_EQ(std::string::npos, events.find("\"seen\""));
    for (int i = 1; i <= kMissed; ++i) {
        EXPECT_NE(std::string::npos, events.find("missed-" + std::to_string(i) + ".")) << i;
    }
}

TEST_F(EventsTest, ANewStreamTellsNothingOld) {
    Notify("old");
    RawConnection stream = WaitForStream(begin_);
    const std::string heartbeat = stream.ReceiveUntil(kHeartbeat);
    EXPECT_EQ(std::string::npos, (begin_ + heartbeat).find("\"old\""));
    EXPECT_NE(std::string::npos, heartbeat.find(kHeartbeat));
}

TEST_F(EventsTest, HaveALimitAndADeadClientsPlaceIsFreed) {
    {
        std::vector<RawConnection> streams;
        for (std::size_t i = 0; i < kStreamLimit; ++i) {
            streams.push_back(WaitForStream(begin_));
        }
        const std::string refusal = Open().ReceiveUntil("}}");
        EXPECT_NE(std::string::npos, refusal.find("503 ")) << refusal;
        EXPECT_NE(std::string::npos, refusal.find("1014"));
        EXPECT_TRUE(owner_.Test("Echo").Succeeded());
    }
    EXPECT_TRUE(WaitUntil([] { return Open().ReceiveUntil("data").find(kSnapshot) != std::string::npos; }));
}

}  // namespace
}  // namespace e2e
