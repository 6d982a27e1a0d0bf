// A limit to how slow an HTTP exchange may be.
#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <limits>
#include <thread>

namespace camvora {

// How slow is too slow. By default the whole exchange has one period; otherwise it lasts as long as
// `minBytes` are counted in each.
struct Pace {
    std::chrono::milliseconds period{};
    std::size_t minBytes = std::numeric_limits<std::size_t>::max();
};

// Ends the exchange that `http`, which stays the caller's, is at when it becomes too slow, however it is
// delayed. A thread more runs as long as this object lives.
class ExchangeWatch {
public:
    ExchangeWatch(httplib::Client& http, Pace pace);
    ~ExchangeWatch();
    ExchangeWatch(const ExchangeWatch&) = delete;
    ExchangeWatch& operator=(const ExchangeWatch&) = delete;

    // Counts what has arrived.
    void Count(std::size_t sizeBytes) { counted_ += sizeBytes; }

    bool HasEnded() const { return hasEnded_; }

private:
    void Watch(httplib::Client& http, Pace pace);

    std::promise<void> over_;
    std::future<void> isOver_;
    std::atomic<std::size_t> counted_{0};
    std::atomic<bool> hasEnded_{false};
    std::thread thread_;
};

}  // namespace camvora
