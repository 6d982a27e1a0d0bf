#include "schedule/timetable.h"

#include "libcamvora/plainfile.h"

#include <filesystem>
#include <optional>
#include <set>
#include <sstream>
#include <system_error>

namespace schedule {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileLimitBytes = 64U << 10U;

std::set<fs::path> FilesIn(const std::string& folder) {
    std::set<fs::path> files;
    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        if (entry->path().filename().string().find('.') == std::string::npos) {
            files.insert(entry->path());
        }
    }
    return files;
}

bool HasRule(const std::string& line) {
    const std::size_t first = line.find_first_not_of(" \t\r");
    return first != std::string::npos && line[first] != '#';
}

void AddLine(const std::string& file, const std::string& text, Timetable& timetable) {
    if (!HasRule(text)) {
        return;
    }
    const std::string name = file + ": " + text;
    if (std::optional<DailyLine> line = ParseDailyLine(text)) {
        timetable.rules.push_back({name, std::move(*line)});
    } else {
        timetable.refused.push_back(name);
    }
}

}  // namespace

Timetable ReadTimetable(const std::string& folder) {
    Timetable timetable;
    for (const fs::path& file : FilesIn(folder)) {
        std::istringstream lines(camvora::ReadPlainFile(file.c_str(), kFileLimitBytes).value_or(""));
        for (std::string line; std::getline(lines, line);) {
            AddLine(file.filename(), line, timetable);
        }
    }
    return timetable;
}

}  // namespace schedule
