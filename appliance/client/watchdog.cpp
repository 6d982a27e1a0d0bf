#include "client/watchdog.h"

#include <utility>

namespace client {
namespace {

constexpr std::chrono::milliseconds kRepeat{20};

}  // namespace

Watchdog::Watchdog(std::chrono::milliseconds limit, std::function<void()> expire)
    : expire_(std::move(expire)), thread_([this, limit] { Watch(limit); }) {}

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

void Watchdog::Watch(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!end_.wait_for(lock, limit, [this] { return isEnded_; })) {
        hasExpired_ = true;
        expire_();
        limit = kRepeat;
    }
}

}  // namespace client
