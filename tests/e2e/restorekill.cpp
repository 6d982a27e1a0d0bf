#include "e2e/restorekill.h"

#include "e2e/restores.h"

#include <tuple>

namespace e2e {

namespace {

namespace fs = std::filesystem;

// The new tree is the factory's here.
class RestoreTrials : public KillTrials {
public:
    RestoreTrials(Appliance& appliance, const AddOn& addOn, Victim victim, KillFigures& figures)
        : KillTrials(appliance, addOn, victim, figures, "0.9.0-0009") {
        AddRestoreScript(addOn_, old_);
        AddRestoreScript(addOn_, fresh_);
        fresh_.CopyTo(FactoryOf(appliance_, addOn_));
    }

private:
    void Prepare() override { old_.CopyTo(PlaceOf(appliance_, addOn_)); }

    Answer Replace() override { return Restore(appliance_, addOn_); }

    void JudgeAnswer(const Answer& answer) override { Expect(answer.status != 0, "no answer"); }

    // The next start, or the next update, mends; the next restore restores.
    void Mend() override {
        if (isPowerCut_) {
            CutPower();
            JudgePlace();
            JudgeCopy();
            return;
        }
        if (++mended_ % 2 == 0) {
            UpdateWithNothing();
            JudgePlace();
            return;
        }
        Expect(Restore(appliance_, addOn_).Succeeded(), "the next restore failed");
        JudgePlace();
        JudgeCopy();
        Expect(InPlace() == fresh_.Content(), "the next restore has restored nothing");
    }

    void JudgeCopy() {
        Expect(!fs::exists(PlaceOf(appliance_, addOn_).string() + ".fresh"), "a part of a copy is left");
        Expect(ListingOf(FactoryOf(appliance_, addOn_)) == fresh_.Content(),
               "the factory's copy is not whole");
    }

    int mended_ = 0;
};

}  // namespace

bool SweepRestoreKills(Appliance& appliance, Extent extent, KillFigures& figures) {
    if (!KillTrials::CanFollow(appliance)) {
        return false;
    }
    for (const auto& [addOn, victim, isInSample] :
         {std::tuple(kDevicePack, Victim::kCaller, true), std::tuple(kLocalDisplay, Victim::kAll, true),
          std::tuple(kDevicePack, Victim::kAll, false), std::tuple(kLocalDisplay, Victim::kCaller, false)}) {
        if (isInSample || extent == Extent::kAll) {
            RestoreTrials(appliance, addOn, victim, figures).Sweep(extent);
        }
    }
    return true;
}

}  // namespace e2e
