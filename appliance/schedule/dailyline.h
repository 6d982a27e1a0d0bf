// The one kind of line that the schedule has: "M H * * * COMMAND", for once a day.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace schedule {

struct DailyLine {
    int minute;
    int hour;
    std::vector<std::string> command;  // the program's full path and its arguments, parted by blanks
};

// The line that `text` is; nothing when it is another.
std::optional<DailyLine> ParseDailyLine(const std::string& text);

// The last time, not after `now`, at which the line was due by the local clock.
std::time_t LastDue(const DailyLine& line, std::time_t now);

}  // namespace schedule
