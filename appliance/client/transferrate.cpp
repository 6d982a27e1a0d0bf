#include "client/transferrate.h"

#include "client/plainwords.h"

#include <algorithm>
#include <cmath>

namespace client {
namespace {

constexpr std::chrono::seconds kLookBack{5};
constexpr std::chrono::milliseconds kShortest{500};

std::string LeftWords(double seconds) {
    constexpr double kMinute = 60;
    constexpr double kHour = 60 * kMinute;
    constexpr double kMostHours = 999;
    if (seconds < 2 * kMinute) {
        return std::to_string(std::lround(std::ceil(seconds))) + " s left";
    }
    if (seconds < 2 * kHour) {
        return std::to_string(std::lround(seconds / kMinute)) + " min left";
    }
    return std::to_string(std::lround(std::min(seconds / kHour, kMostHours))) + " h left";
}

}  // namespace

void TransferRate::Add(Clock::time_point time, std::uint64_t bytes) {
    if (!samples_.empty() && bytes < samples_.back().bytes) {
        samples_.clear();
    }
    samples_.push_back({time, bytes});
    while (samples_.size() > 2 && time - samples_[1].time >= kLookBack) {
        samples_.pop_front();
    }
}

std::string TransferRate::Words(std::uint64_t sizeBytes) const {
    if (samples_.empty() || samples_.back().time - samples_.front().time < kShortest) {
        return "";
    }
    const std::chrono::duration<double> time = samples_.back().time - samples_.front().time;
    const auto bytes = static_cast<double>(samples_.back().bytes - samples_.front().bytes);
    const double rate = bytes / time.count();
    std::string words = SizeWords(static_cast<std::uint64_t>(rate)) + "/s";
    if (rate <= 0 || samples_.back().bytes > sizeBytes) {
        return words;
    }
    return words + ", " + LeftWords(static_cast<double>(sizeBytes - samples_.back().bytes) / rate);
}

}  // namespace client
