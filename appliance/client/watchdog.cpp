#include "client/watchdog.h"

#include <utility>

namespace client {
namespace {

constexpr std::chrono::milliseconds kRepeat{20};

}  // namespace

Watchdog::Watchdog(std::chrono::milliseconds limit, std::function<void()> expire)
    : limit_(limit),
      expire_(std::move(expire)),
      deadline_(Clock::now() + limit),
      thread_([this] { Watch(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isEnded_ = true;
    }
    end_.notify_one();
    thread_.join();
}

bool Watchdog::HasExpired() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return hasExpired_;
}

void Watchdog::Restart() {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!hasExpired_) {
        deadline_ = Clock::now() + limit_;
    }
}

void Watchdog::Watch() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!isEnded_) {
        const Clock::time_point deadline = deadline_;  // may begin anew meanwhile
        if (Clock::now() < deadline) {
            end_.wait_until(lock, deadline);
            continue;
        }
        hasExpired_ = true;
        expire_();
        deadline_ = Clock::now() + kRepeat;
    }
}

}  // namespace client
