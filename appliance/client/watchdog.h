// A time limit on work that blocks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace client {

// Calls a function, from a thread of its own, when it has lived longer than its limit, and again every few
// milliseconds until it is destroyed: the blocked work may not have been at a point where it could be ended.
class Watchdog {
public:
    // `expire` ends the work; it must not throw, and it must be safe to call beside the work.
    Watchdog(std::chrono::milliseconds limit, std::function<void()> expire);

    // Returns when no call of the function is under way any more.
    ~Watchdog();

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // True when the limit has passed.
    bool HasExpired();

private:
    void Watch(std::chrono::milliseconds limit);

    std::function<void()> expire_;
    std::mutex mutex_;
    std::condition_variable end_;
    bool isEnded_ = false;
    bool hasExpired_ = false;
    std::thread thread_;
};

}  // namespace client
