#include "e2e/updatekill.h"

#include "e2e/processes.h"
#include "e2e/updates.h"
#include "support/smalldisk.h"
#include "support/syscallkill.h"

#include <chrono>
#include <set>
#include <sstream>
#include <utility>

namespace e2e {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kNoKill = 1'000'000;
constexpr int kFailed = 400;
constexpr int kPowerCutEvery = 20;
constexpr double kLockLimitsS = 6.5;
constexpr std::size_t kWorkDiskBytes = 32U << 20U;

std::string NameOf(const FileCall& call) {
    return call.program + " " + call.name;
}

// The number of the last call of each kind.
std::set<std::size_t> LastOfEachKind(const std::vector<FileCall>& calls) {
    std::map<std::string, std::size_t> byName;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        byName[NameOf(calls[i])] = i + 1;
    }
    std::set<std::size_t> numbers;
    for (const auto& [name, number] : byName) {
        numbers.insert(number);
    }
    return numbers;
}

class KillTrials {
public:
    KillTrials(Appliance& appliance, const AddOn& addOn, Victim victim, KillFigures& figures)
        : appliance_(appliance), addOn_(addOn), victim_(victim), figures_(figures) {}

    // Returns the calls until somebody was killed, all where `number` is beyond them.
    std::vector<FileCall> Run(std::size_t number) {
        Prepare();
        SyscallKill killer(appliance_.RequestServer(), number, victim_);
        const Answer answer = Update(appliance_, addOn_, FilePath(addOn_));
        std::vector<FileCall> calls = killer.Wait();
        trial_ = std::to_string(number) + ": " + (calls.size() == number ? NameOf(calls.back()) : "no kill");
        JudgeAnswer(answer);
        Recover();
        if (calls.size() == number) {
            Count(calls.back());
        }
        JudgePlace();
        return calls;
    }

private:
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
        for (TrialCounts* counts : {&figures_.byCall[{call.program, call.name}], &figures_.all}) {
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
        for (const std::size_t number : LastOfEachKind(trials.Run(kNoKill))) {
            (void)trials.Run(number);
        }
    }
}

void SweepAll(Appliance& appliance, KillFigures& figures) {
    for (const AddOn& addOn : {kDevicePack, kLocalDisplay}) {
        for (const Victim victim : {Victim::kCaller, Victim::kAll}) {
            KillTrials trials(appliance, addOn, victim, figures);
            for (std::size_t number = 1; trials.Run(number).size() == number; ++number) {
            }
        }
    }
}

}  // namespace

bool SweepKills(Appliance& appliance, Extent extent, KillFigures& figures) {
    if (!SyscallKill(appliance.RequestServer(), kNoKill, Victim::kCaller).IsFollowing()) {
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
