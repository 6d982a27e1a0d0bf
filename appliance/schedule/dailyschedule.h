// What is due, whatever the clock does.
#pragma once

#include "schedule/timetable.h"

#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace schedule {

// When each rule, by its name, was last due and followed.
using LastTimes = std::map<std::string, std::time_t>;

// A rule is followed once for each time at which it is due, the last one only where several were missed. One
// that is new was never missed before. While the clock shows a time long before the last one a rule is
// followed by that clock, and what was done is remembered for when it is set right.
class DailySchedule {
public:
    explicit DailySchedule(LastTimes times) : times_(std::move(times)) {}

    // The first of the rules that is to be followed at `now`, which counts as followed from then on; nothing
    // when none is.
    std::optional<DailyLine> TakeNext(const std::vector<Rule>& rules, std::time_t now);

    // What has to be kept until the next start.
    const LastTimes& Times() const { return times_; }

private:
    std::time_t& LastTimeOf(const std::string& name, std::time_t due);

    LastTimes times_;
    LastTimes timesOfClockBehind_;
};

}  // namespace schedule
