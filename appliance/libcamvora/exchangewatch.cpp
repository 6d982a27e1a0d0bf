#include "libcamvora/exchangewatch.h"

namespace camvora {

namespace {

// The exchange may not have been at a point where it could be ended.
constexpr std::chrono::milliseconds kRepeat{20};

}  // namespace

ExchangeWatch::ExchangeWatch(httplib::Client& http, Pace pace)
    : isOver_(over_.get_future()), thread_([this, &http, pace] { Watch(http, pace); }) {}

ExchangeWatch::~ExchangeWatch() {
    over_.set_value();
    thread_.join();
}

void ExchangeWatch::Watch(httplib::Client& http, Pace pace) {
    while (isOver_.wait_for(hasEnded_ ? kRepeat : pace.period) == std::future_status::timeout) {
        if (hasEnded_ || counted_.exchange(0) < pace.minBytes) {
            hasEnded_ = true;
            http.stop();
        }
    }
}

}  // namespace camvora
