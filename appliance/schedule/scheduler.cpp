// camvora-scheduler: follows the daily lines of the schedule, one after the other. Run by the host, and ends
// with it, as does what it runs.
#include "schedule/dailyschedule.h"
#include "schedule/timetable.h"

#include "libcamvora/lasttimes.h"
#include "libcamvora/paths.h"
#include "libcamvora/program.h"
#include "platform/log.h"

#include <chrono>
#include <exception>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using schedule::DailyLine;
using schedule::DailySchedule;
using schedule::Timetable;

constexpr std::chrono::seconds kLookEvery{20};
constexpr std::chrono::hours kCommandLimit{12};

std::string JoinedText(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

void Run(const DailyLine& line) {
    const std::vector<std::string>& command = line.command;
    const camvora::ProgramEnd end =
        camvora::RunProgram({command.front(),
                             {command.begin() + 1, command.end()},
                             {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LANG=C.UTF-8"},
                             camvora::kProgramLogFile,
                             kCommandLimit});
    CVPrintf(0, nullptr, nullptr, "scheduler", __LINE__, __func__, "Ran [%s]: exit status %d\n",
             JoinedText(command).c_str(), end.exitStatus);
}

// Each is told once, as long as it stays.
void TellRefused(const Timetable& timetable, std::set<std::string>& told) {
    for (const std::string& name : timetable.refused) {
        if (told.count(name) == 0) {
            CVPrintf(0, nullptr, nullptr, "scheduler", __LINE__, __func__, "Not a daily line [%s]\n",
                     name.c_str());
        }
    }
    told = {timetable.refused.begin(), timetable.refused.end()};
}

// What is followed is written down before: nothing is done twice, whatever ends this process. Where that
// cannot be written it waits for the next look.
std::optional<DailyLine> TakeNext(DailySchedule& schedule, const Timetable& timetable) {
    DailySchedule next = schedule;
    std::optional<DailyLine> line = next.TakeNext(timetable.rules, std::time(nullptr));
    if (next.Times() != schedule.Times() && !camvora::KeepLastTimes(next.Times())) {
        return std::nullopt;
    }
    schedule = std::move(next);
    return line;
}

void Look(DailySchedule& schedule, std::set<std::string>& told) {
    for (;;) {
        const Timetable timetable = schedule::ReadTimetable(camvora::kScheduleFolder);
        TellRefused(timetable, told);
        const std::optional<DailyLine> line = TakeNext(schedule, timetable);
        if (!line) {
            return;
        }
        Run(*line);
    }
}

[[noreturn]] void FollowSchedule() {
    std::optional<DailySchedule> schedule;
    std::set<std::string> told;
    for (;; std::this_thread::sleep_for(kLookEvery)) {
        try {
            if (!schedule) {
                schedule.emplace(camvora::LastTimes());
            }
            Look(*schedule, told);
        } catch (const std::exception& failure) {
            CVPrintf(0, nullptr, nullptr, "scheduler", __LINE__, __func__,
                     "Failed to follow the schedule [%s]\n", failure.what());
        }
    }
}

}  // namespace

int main() {
    FollowSchedule();
}
