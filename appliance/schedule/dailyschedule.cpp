#include "schedule/dailyschedule.h"

#include <algorithm>
#include <iterator>

namespace schedule {

namespace {

constexpr std::time_t kLongestDayS = 25 * 3600;

void KeepOnly(const std::vector<Rule>& rules, LastTimes& times) {
    for (auto entry = times.begin(); entry != times.end();) {
        const bool isRule = std::any_of(rules.begin(), rules.end(),
                                        [&entry](const Rule& rule) { return rule.name == entry->first; });
        entry = isRule ? std::next(entry) : times.erase(entry);
    }
}

}  // namespace

std::optional<DailyLine> DailySchedule::TakeNext(const std::vector<Rule>& rules, std::time_t now) {
    KeepOnly(rules, times_);
    KeepOnly(rules, timesOfClockBehind_);
    for (const Rule& rule : rules) {
        const std::time_t due = LastDue(rule.line, now);
        std::time_t& last = LastTimeOf(rule.name, due);
        if (due > last) {
            last = due;
            return rule.line;
        }
    }
    return std::nullopt;
}

std::time_t& DailySchedule::LastTimeOf(const std::string& name, std::time_t due) {
    std::time_t& last = times_.emplace(name, due).first->second;
    return last > due + kLongestDayS ? timesOfClockBehind_.emplace(name, due).first->second : last;
}

}  // namespace schedule
