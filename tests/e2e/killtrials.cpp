#include "e2e/killtrials.h"

#include "e2e/processes.h"

#include <algorithm>
#include <chrono>

namespace e2e {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kErrFailed = 400;
constexpr int kPowerCutEvery = 20;
constexpr double kLockLimitsS = 6.5;

}  // namespace

bool KillTrials::CanFollow(const Appliance& appliance) {
    return SyscallKill(appliance.RequestServer(), {}, 1, Victim::kCaller).IsFollowing();
}

void KillTrials::Sweep(Extent extent) {
    for (const auto& [kind, count] : CountCalls()) {
        if (extent == Extent::kSample && kind.name != "rename") {
            (void)Kill(kind, count);
            continue;
        }
        for (std::size_t number = 1; Kill(kind, number); ++number) {
        }
    }
}

// Lets it come to its end.
std::map<FileCall, std::size_t> KillTrials::CountCalls() {
    std::map<FileCall, std::size_t> counts;
    for (const FileCall& call : Run({}, 1)) {
        ++counts[call];
    }
    return counts;
}

// Kills at the `number`th call of the kind. Returns false when there was none.
bool KillTrials::Kill(const FileCall& kind, std::size_t number) {
    const std::vector<FileCall> calls = Run(kind, number);
    const auto count = static_cast<std::size_t>(std::count(calls.begin(), calls.end(), kind));
    if (count == number) {
        Count();
    }
    return count == number;
}

std::vector<FileCall> KillTrials::Run(const FileCall& kind, std::size_t number) {
    trial_ = kind.program + " " + kind.name + " " + std::to_string(number);
    Prepare();
    StartService();
    (void)appliance_.WaitForRequests(0);
    SyscallKill killer(appliance_.RequestServer(), kind, number, victim_);
    const Answer answer = Replace();
    std::vector<FileCall> calls = killer.Wait();
    JudgeAnswer(answer);
    isPowerCut_ = ++trials_ % kPowerCutEvery == 0;
    Mend();
    return calls;
}

// A replacement of either add-on is to end a daemon and to start it.
void KillTrials::StartService() {
    const Json::Value service = Param("service", kLocalDisplay.service);
    const auto runs = [&] {
        const Json::Value info = appliance_.Owner().AddOns("GetInfo", service).Data();
        return info["blRunning"].asBool() && info["status"] == 1;
    };
    if (!runs()) {
        (void)appliance_.Owner().AddOns("Enable", service);
        (void)WaitUntil(runs);
    }
}

void KillTrials::CutPower() {
    appliance_.Kill();
    appliance_.Launch();
}

void KillTrials::UpdateWithNothing() {
    const auto begin = Clock::now();
    const Answer answer = Update(appliance_, addOn_, FilePath(addOn_, true));
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    Expect(seconds < kLockLimitsS, "the next update took " + std::to_string(seconds) + " s");
    Expect(answer.Code() == kErrFailed, "the next update said " + std::to_string(answer.Code()));
}

void KillTrials::Count() {
    const Listing listing = InPlace();
    ++figures_.trials;
    figures_.old += listing == old_.Content() ? 1U : 0U;
    figures_.fresh += listing == fresh_.Content() ? 1U : 0U;
}

void KillTrials::JudgePlace() {
    const Listing installed = InPlace();
    Expect(installed == old_.Content() || installed == fresh_.Content(), "no whole tree is in the place");
    for (const char* suffix : {".aside", ".dropped"}) {
        Expect(!fs::exists(PlaceOf(appliance_, addOn_).string() + suffix), std::string(suffix) + " is left");
    }
}

Listing KillTrials::InPlace() const {
    const fs::path place = PlaceOf(appliance_, addOn_);
    return fs::is_directory(place) ? ListingOf(place) : Listing();
}

void KillTrials::Expect(bool isSo, const std::string& fault) {
    if (!isSo) {
        figures_.faults.push_back(std::string(addOn_.name) + " " + trial_ + ": " + fault);
    }
}

}  // namespace e2e
