// A time limit on work that blocks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace client {

// Calls a function, from a thread of its own, when its limit has passed, and again every few milliseconds
// until it is destroyed: the blocked work may not have been at a point where it could be ended.
class Watchdog {
public:
    // `expire` ends the work; it must not throw, and it must be safe to call beside the work.
    Watchdog(std::chrono::milliseconds limit, std::function<void()> expire);

    // Returns when no call of the function is under way any more.
    ~Watchdog();

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    // Lets the limit begin anew, unless it has passed.
    void Restart();

    // True when the limit has passed.
    bool HasExpired();

private:
    using Clock = std::chrono::steady_clock;

    void Watch();

    const std::chrono::milliseconds limit_;
    std::function<void()> expire_;
    std::mutex mutex_;
    std::condition_variable end_;
    bool isEnded_ = false;
    bool hasExpired_ = false;
    Clock::time_point deadline_;
    std::thread thread_;
};

}  // namespace client
