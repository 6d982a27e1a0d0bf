#include "e2e/updatekill.h"

#include "support/smalldisk.h"

#include <tuple>

namespace e2e {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kWorkDiskBytes = 32U << 20U;

class UpdateTrials : public KillTrials {
public:
    UpdateTrials(Appliance& appliance, const AddOn& addOn, Victim victim, KillFigures& figures)
        : KillTrials(appliance, addOn, victim, figures, "2.0.0-0002") {}

private:
    void Prepare() override { Arrange(appliance_, addOn_, old_, fresh_); }

    Answer Replace() override { return Update(appliance_, addOn_, FilePath(addOn_)); }

    // An update that came to its end has told the truth, and needs nobody to mend anything.
    void JudgeAnswer(const Answer& answer) override {
        const bool isWhole =
            answer.status != 200 || InPlace() == (answer.Succeeded() ? fresh_ : old_).Content();
        Expect(isWhole, "the answer is not what is in the place");
        Expect(answer.status != 0, "no answer");
    }

    void Mend() override {
        if (isPowerCut_) {
            CutPower();
        } else {
            UpdateWithNothing();
        }
        JudgePlace();
        const fs::path rest = WorkDirectory(appliance_, addOn_) / addOn_.name;
        Expect(!fs::exists(rest) || ListingOf(rest) == fresh_.Content(),
               "a part of the new tree waits to be installed");
    }
};

}  // namespace

// A sample is one kind of kill for each add-on; all of them take much longer.
bool SweepKills(Appliance& appliance, Extent extent, KillFigures& figures) {
    if (!KillTrials::CanFollow(appliance)) {
        return false;
    }
    for (const auto& [addOn, victim, isInSample] :
         {std::tuple(kDevicePack, Victim::kAll, true), std::tuple(kLocalDisplay, Victim::kCaller, true),
          std::tuple(kDevicePack, Victim::kCaller, false), std::tuple(kLocalDisplay, Victim::kAll, false)}) {
        if (isInSample || extent == Extent::kAll) {
            UpdateTrials(appliance, addOn, victim, figures).Sweep(extent);
        }
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
