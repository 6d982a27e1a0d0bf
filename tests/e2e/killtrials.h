// Replacements of installed add-ons that are killed at a system call which changes the file system: in the
// request's process or in a program that it runs.
#pragma once

#include "e2e/updates.h"
#include "support/syscallkill.h"

#include <map>
#include <string>
#include <vector>

namespace e2e {

struct KillFigures {
    unsigned trials = 0;
    unsigned old = 0;  // the tree in the place of the add-on once somebody had mended it
    unsigned fresh = 0;
    std::vector<std::string> faults;  // a line for each
};

// The last call of each kind and all that rename, or all calls.
enum class Extent { kSample, kAll };

// Replacements of one kind of one add-on, each killed at another call.
class KillTrials {
public:
    //   appliance  runs
    //   figures    get what comes of it
    //   fresh      the version of what shall be installed
    KillTrials(Appliance& appliance, const AddOn& addOn, Victim victim, KillFigures& figures,
               const std::string& fresh)
        : appliance_(appliance), addOn_(addOn), victim_(victim), figures_(figures), fresh_(addOn, fresh) {}
    virtual ~KillTrials() = default;
    KillTrials(const KillTrials&) = delete;
    KillTrials& operator=(const KillTrials&) = delete;

    void Sweep(Extent extent);

    // False where the machine does not let requests be followed.
    static bool CanFollow(const Appliance& appliance);

protected:
    // Puts the old tree in place, and the new one to where it is taken from.
    virtual void Prepare() = 0;

    // Has the tree replaced.
    virtual Answer Replace() = 0;
    virtual void JudgeAnswer(const Answer& answer) = 0;

    // What the next request mends and leaves is judged, too.
    virtual void Mend() = 0;

    // Ends all processes and starts the appliance again.
    void CutPower();

    // Sends an update that finds nothing to install.
    void UpdateWithNothing();

    void JudgePlace();
    Listing InPlace() const;
    void Expect(bool isSo, const std::string& fault);

    Appliance& appliance_;
    const AddOn addOn_;
    const Victim victim_;
    KillFigures& figures_;
    AddOnTree old_{addOn_, "1.0.0-0001"};
    AddOnTree fresh_;
    bool isPowerCut_ = false;  // in place of a next request

private:
    std::map<FileCall, std::size_t> CountCalls();
    bool Kill(const FileCall& kind, std::size_t number);
    std::vector<FileCall> Run(const FileCall& kind, std::size_t number);
    void StartService();
    void Count();

    std::string trial_;
    int trials_ = 0;
};

}  // namespace e2e
