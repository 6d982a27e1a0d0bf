#include "host/connectionthreads.h"

#include <chrono>
#include <system_error>
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
    const auto serve = [this, serve = std::move(connection)] {
        serve();
        End();
    };
    try {
        std::thread(serve).detach();
    } catch (const std::system_error&) {
        serve();  // no thread to be had: the others wait meanwhile
    }
}

void ConnectionThreads::shutdown() {
    endIdling_();
    std::unique_lock<std::mutex> lock(mutex_);
    ended_.wait(lock, [this] { return running_ == 0; });
}

void ConnectionThreads::End() {
    const std::lock_guard<std::mutex> lock(mutex_);
    --running_;
    ended_.notify_all();
}

}  // namespace host
