// The lines of the schedule as they lie in its folder.
#pragma once

#include "schedule/dailyline.h"

#include <string>
#include <vector>

namespace schedule {

struct Rule {
    std::string name;  // its file and its text; another text is another rule
    DailyLine line;
};

struct Timetable {
    std::vector<Rule> rules;
    std::vector<std::string> refused;  // the names of lines that cannot be followed
};

// Reads the files of `folder` in the order of their names. Files whose names have a dot, and what is no plain
// file, do not count; neither do empty lines and those that begin with "#".
Timetable ReadTimetable(const std::string& folder);

}  // namespace schedule
