#include "host/restartbudget.h"

namespace host {

namespace {

constexpr std::size_t kRestarts = 5;
constexpr std::chrono::seconds kWithin{10};

}  // namespace

bool RestartBudget::Spend(std::chrono::steady_clock::time_point now) {
    while (!recent_.empty() && now - recent_.front() > kWithin) {
        recent_.pop_front();
    }
    recent_.push_back(now);
    return recent_.size() <= kRestarts;
}

}  // namespace host
