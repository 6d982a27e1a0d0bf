#include "e2e/updatekill.h"

#include "e2e/processes.h"
#include "e2e/updates.h"
#include "support/smalldisk.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace e2e {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kFailed = 400;
constexpr int kPowerCutEvery = 20;
constexpr double kLockLimitsS = 6.5;
constexpr std::size_t kWorkDiskBytes = 32U << 20U;

class KillTrials {
public:
    KillTrials(Appliance& appliance, const AddOn& addOn, Victim victim, KillFigures& figures)
        : appliance_(appliance), addOn_(addOn), victim_(victim), figures_(figures) {}

    // Runs the update until the end, and counts its calls.
    std::map<FileCall, std::size_t> CountCalls() {
        std::map<FileCall, std::size_t> counts;
        for (const FileCall& call : RunUpdate({}, 1)) {
            ++counts[call];
        }
        return counts;
    }

    // Kills at the `number`th call of the kind. Returns false when there was none.
    bool Kill(const FileCall& kind, std::size_t number) {
        const std::vector<FileCall> calls = RunUpdate(kind, number);
        const auto count = static_cast<std::size_t>(std::count(calls.begin(), calls.end(), kind));
        if (count == number) {
            Count(kind);
        }
        return count == number;
    }

private:
    std::vector<FileCall> RunUpdate(const FileCall& kind, std::size_t number) {
        trial_ = kind.program + " " + kind.name + " " + std::to_string(number);
        Prepare();
        SyscallKill killer(appliance_.RequestServer(), kind, number, victim_);
        const Answer answer = Update(appliance_, addOn_, FilePath(addOn_));
        std::vector<FileCall> calls = killer.Wait();
        JudgeAnswer(answer);
        Recover();
        JudgePlace();
        return calls;
    }

    void Prepare() {
        Arrange(appliance_, addOn_, old_, fresh_);
        StartService();
        (void)appliance_.WaitForRequests(0);
    }

    // The update of either add-on is to end a daemon and to start it.
    void StartService() {
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

    // An update that came to its end has told the truth, and needs nobody to mend anything.
    void JudgeAnswer(const Answer& answer) {
        const bool isWhole =
            answer.status != 200 || InPlace() == (answer.Succeeded() ? fresh_ : old_).Content();
        Expect(isWhole, "the answer is not what is in the place");
        Expect(answer.status != 0, "no answer");
    }

    void Recover() {
        if (++trials_ % kPowerCutEvery == 0) {
            appliance_.Kill();
            appliance_.Launch();
            return;
        }
        const auto begin = Clock::now();
        const Answer answer = Update(appliance_, addOn_, FilePath(addOn_, true));
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        figures_.longestS = std::max(figures_.longestS, seconds);
        Expect(seconds < kLockLimitsS, "the next update took " + std::to_string(seconds) + " s");
        Expect(answer.Code() == kFailed, "the next update said " + std::to_string(answer.Code()));
    }

    void Count(const FileCall& call) {
        const Listing listing = InPlace();
        for (TrialCounts* counts : {&figures_.byCall[call], &figures_.all}) {
            ++counts->trials;
            ++(listing == old_.Content()     ? counts->old
               : listing == fresh_.Content() ? counts->fresh
               : listing.empty()             ? counts->none
                                             : counts->mixture);
        }
    }

    void JudgePlace() {
        const Listing installed = InPlace();
        Expect(installed == old_.Content() || installed == fresh_.Content(), "no whole tree is in the place");
        for (const char* suffix : {".aside", ".dropped"}) {
            Expect(!fs::exists(PlaceOf(appliance_, addOn_).string() + suffix),
                   std::string(suffix) + " is left");
        }
        const fs::path rest = WorkDirectory(appliance_, addOn_) / addOn_.name;
        Expect(!fs::exists(rest) || ListingOf(rest) == fresh_.Content(),
               "a part of the new tree waits to be installed");
    }

    Listing InPlace() const {
        const fs::path place = PlaceOf(appliance_, addOn_);
        return fs::is_directory(place) ? ListingOf(place) : Listing();
    }

    void Expect(bool isSo, const std::string& fault) {
        if (!isSo) {
            figures_.faults.push_back(std::string(addOn_.name) + " " + trial_ + ": " + fault);
        }
    }

    Appliance& appliance_;
    const AddOn addOn_;
    const Victim victim_;
    KillFigures& figures_;
    const AddOnTree old_{addOn_, "1.0.0-0001"};
    const AddOnTree fresh_{addOn_, "2.0.0-0002"};
    std::string trial_;
    int trials_ = 0;
};

// One kind of kill for each add-on; all of them take much longer.
void SweepSample(Appliance& appliance, KillFigures& figures) {
    for (const auto& [addOn, victim] :
         {std::pair(kDevicePack, Victim::kAll), std::pair(kLocalDisplay, Victim::kCaller)}) {
        KillTrials trials(appliance, addOn, victim, figures);
        for (const auto& [kind, count] : trials.CountCalls()) {
            (void)trials.Kill(kind, count);
        }
    }
}

void SweepAll(Appliance& appliance, KillFigures& figures) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        for (const Victim victim : {Victim::kCaller, Victim::kAll}) {
            KillTrials trials(appliance, addOn, victim, figures);
            for (const auto& entry : trials.CountCalls()) {
                for (std::size_t number = 1; trials.Kill(entry.first, number); ++number) {
                }
            }
        }
    }
}

}  // namespace

bool SweepKills(Appliance& appliance, Extent extent, KillFigures& figures) {
    if (!SyscallKill(appliance.RequestServer(), {}, 1, Victim::kCaller).IsFollowing()) {
        return false;
    }
    if (extent == Extent::kSample) {
        SweepSample(appliance, figures);
    } else {
        SweepAll(appliance, figures);
    }
    return true;
}

bool MountWorkDirectories(const Appliance& appliance) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        const std::string folder = WorkDirectory(appliance, addOn);
        fs::create_directories(folder);
        if (!MountSmallDisk(folder, kWorkDiskBytes)) {
            return false;
        }
    }
    return true;
}

}  // namespace e2e
