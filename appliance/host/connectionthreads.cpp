#include "host/connectionthreads.h"

#include <thread>
#include <utility>

namespace host {

void ConnectionThreads::enqueue(std::function<void()> connection) {
    {
        std::unique_lock<std::mutex> lock(mutex_);
        ended_.wait(lock, [this] { return running_ < limit_; });
        ++running_;
    }
    std::thread([this, serve = std::move(connection)] {
        serve();
        End();
    }).detach();
}

void ConnectionThreads::shutdown() {
    std::unique_lock<std::mutex> lock(mutex_);
    ended_.wait(lock, [this] { return running_ == 0; });
}

void ConnectionThreads::End() {
    const std::lock_guard<std::mutex> lock(mutex_);
    --running_;
    ended_.notify_all();
}

}  // namespace host
