// The threads that serve connections.
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

namespace host {

// Starts a thread per connection, so that what a burst of them takes is given back afterwards. Where there
// are as many as allowed, further connections wait to be accepted. Those that carry a stream do not count:
// they have a limit of their own.
class ConnectionThreads final : public httplib::TaskQueue {
public:
    //   limit        connections without a stream at a time
    //   streamCount  tells how many streams there are
    //   endIdling    ends the connections that wait for something; called when no more are taken
    ConnectionThreads(int limit, std::function<int()> streamCount, std::function<void()> endIdling)
        : limit_(limit), streamCount_(std::move(streamCount)), endIdling_(std::move(endIdling)) {}

    void enqueue(std::function<void()> connection) override;
    void shutdown() override;  // waits until all have ended

private:
    void End();

    const int limit_;
    const std::function<int()> streamCount_;
    const std::function<void()> endIdling_;
    std::mutex mutex_;
    std::condition_variable ended_;
    int running_ = 0;
};

}  // namespace host
