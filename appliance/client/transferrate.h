// How fast something arrives.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

namespace client {

// Looks back over the last few seconds, so that a rate which changes shows.
class TransferRate {
public:
    using Clock = std::chrono::steady_clock;

    // Tells how much has arrived at that time. What shrinks begins anew.
    void Add(Clock::time_point time, std::uint64_t bytes);

    // The rate, and the time that the rest will take, for people: "3.1 MiB/s, 58 s left". Empty when it is
    // not known yet.
    std::string Words(std::uint64_t sizeBytes) const;

private:
    struct Sample {
        Clock::time_point time;
        std::uint64_t bytes;
    };

    std::deque<Sample> samples_;  // the oldest first
};

}  // namespace client
