// One-time codes, by which somebody is let in whom the owner has given one.
#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace host {

// Codes live in memory only. Used by all threads of the HTTP process at once.
class OneTimeCodes {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::seconds kValidity{600};

    // A new code for `name`, in place of any that it had: three groups of four letters and digits. Of more
    // than 16 the oldest ends.
    //   throws  std::runtime_error when there are no random numbers
    std::string Make(const std::string& name, Clock::time_point now = Clock::now());

    // The name that the code was made for, and ends the code; nothing when there is no such code any more. It
    // may be written in lower case and without hyphens. How much of a wrong one is right takes the same time;
    // the tenth wrong one ends all codes.
    std::optional<std::string> Redeem(const std::string& code, Clock::time_point now = Clock::now());

private:
    struct Entry {
        std::string name;
        std::string code;
        Clock::time_point end;
    };

    void EndOld(Clock::time_point now);

    std::mutex mutex_;
    std::deque<Entry> entries_;  // oldest first
    int wrongCount_ = 0;         // since there were none
};

}  // namespace host
