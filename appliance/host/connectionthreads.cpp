#include "host/connectionthreads.h"

#include <chrono>
#include <thread>
#include <utility>

namespace host {

namespace {

constexpr std::chrono::milliseconds kLookAgain{100};  // a connection may have become a stream

}  // namespace

void ConnectionThreads::enqueue(std::function<void()> connection) {
    {
        std::unique_lock<std::mutex> lock(mutex_);
        while (!ended_.wait_for(lock, kLookAgain, [this] { return running_ - streamCount_() < limit_; })) {
        }
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
