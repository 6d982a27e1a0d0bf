// Client notifications, and how the appliance stands, as streams of server-sent events.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace host {

class EventHub;

// One client's stream. Used by the thread that serves the client.
class EventStream {
public:
    ~EventStream();  // gives its place back
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;

    // Waits for what comes next, in the form of server-sent events: first a snapshot, then notifications,
    // oldest first, the state whenever it has changed, and a comment when there is nothing for a while. Empty
    // when the stream is at its end.
    std::string Next();

private:
    friend class EventHub;
    EventStream(EventHub& hub, std::optional<long long> lastSeen);

    EventHub& hub_;
    std::optional<long long> lastSeen_;
    long long stateSeen_ = 0;
    bool hasBegun_ = false;
};

// All streams, and the one thread that looks for what is new while there are any.
class EventHub {
public:
    //   streamLimit  streams at a time
    //   heartbeat    the time after which a silent stream carries a comment, so that a dead client is found
    EventHub(int streamLimit, std::chrono::seconds heartbeat);
    ~EventHub();
    EventHub(const EventHub&) = delete;
    EventHub& operator=(const EventHub&) = delete;

    // A new stream; null when too many are open.
    //   lastSeen  the id of the last notification that the client has seen, if it has seen one
    std::shared_ptr<EventStream> Open(std::optional<long long> lastSeen);

    // The number of open streams. Called by any thread.
    int StreamCount() const { return streams_; }

    // Ends all streams. Called by any thread.
    void Stop();

private:
    friend class EventStream;

    std::string Begin(std::optional<long long>& lastSeen, long long& stateSeen);
    std::string Continue(long long& lastSeen, long long& stateSeen);
    void Leave();
    void Poll();
    static long long ReadNewestId();
    static std::string ReadState();

    const int streamLimit_;
    const std::chrono::seconds heartbeat_;
    std::mutex mutex_;  // of what follows
    std::condition_variable changed_;
    std::atomic<int> streams_ = 0;
    long long newestId_ = 0;
    std::string state_;          // as an event
    long long stateNumber_ = 0;  // grows with each that is another than the one before
    bool isStopped_ = false;
    std::thread poller_;
};

}  // namespace host
