// The threads that serve connections.
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace host {

// Starts a thread per connection, so that what a burst of them takes is given back afterwards. Where there
// are as many as allowed, further connections wait to be accepted.
class ConnectionThreads final : public httplib::TaskQueue {
public:
    //   limit  threads at a time
    explicit ConnectionThreads(int limit) : limit_(limit) {}

    void enqueue(std::function<void()> connection) override;
    void shutdown() override;  // waits until all have ended

private:
    void End();

    const int limit_;
    std::mutex mutex_;
    std::condition_variable ended_;
    int running_ = 0;
};

}  // namespace host
