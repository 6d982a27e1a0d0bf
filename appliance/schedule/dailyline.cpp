#include "schedule/dailyline.h"

#include <charconv>
#include <iterator>
#include <sstream>

namespace schedule {

namespace {

constexpr std::size_t kFields = 5;  // before the command
constexpr int kLastMinute = 59;
constexpr int kLastHour = 23;

std::optional<int> NumberUpTo(const std::string& text, int last) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber && number >= 0 && number <= last ? std::optional(number) : std::nullopt;
}

std::vector<std::string> Words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), std::istream_iterator<std::string>()};
}

}  // namespace

std::optional<DailyLine> ParseDailyLine(const std::string& text) {
    const std::vector<std::string> words = Words(text);
    if (words.size() <= kFields || words[kFields].front() != '/') {
        return std::nullopt;
    }
    const std::optional<int> minute = NumberUpTo(words[0], kLastMinute);
    const std::optional<int> hour = NumberUpTo(words[1], kLastHour);
    const bool isDaily = words[2] == "*" && words[3] == "*" && words[4] == "*";
    if (!minute || !hour || !isDaily) {
        return std::nullopt;
    }
    return DailyLine{*minute, *hour, {words.begin() + kFields, words.end()}};
}

// The day's time is looked up anew for each day, as not all days are equally long.
std::time_t LastDue(const DailyLine& line, std::time_t now) {
    for (int daysBack = 0;; ++daysBack) {
        std::tm day{};
        (void)localtime_r(&now, &day);
        day.tm_mday -= daysBack;
        day.tm_hour = line.hour;
        day.tm_min = line.minute;
        day.tm_sec = 0;
        day.tm_isdst = -1;
        const std::time_t due = std::mktime(&day);
        if (due <= now) {
            return due;
        }
    }
}

}  // namespace schedule
