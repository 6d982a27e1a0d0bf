// Updates that are killed at a system call which changes the file system: in the request's process or in a
// program that it runs.
#pragma once

#include "e2e/appliance.h"
#include "support/syscallkill.h"

#include <map>
#include <string>
#include <vector>

namespace e2e {

// What was in the place of the add-on after the next "Update", or the next start.
struct TrialCounts {
    unsigned trials = 0;
    unsigned old = 0;
    unsigned fresh = 0;
    unsigned none = 0;
    unsigned mixture = 0;
};

struct KillFigures {
    std::map<FileCall, TrialCounts> byCall;
    TrialCounts all;
    double longestS = 0;              // of the next "Update"
    std::vector<std::string> faults;  // a line for each
};

// The last call of each kind, or all.
enum class Extent { kSample, kAll };

// Has both add-ons of a running appliance updated again and again, killed at the next call each time. Adds
// what came of it. Returns false where the machine does not let updates be followed.
bool SweepKills(Appliance& appliance, Extent extent, KillFigures& figures);

// Puts a disk of its own on each work directory of the appliance, which does not run, for the calling process
// and all that it forks; it has one thread. Returns false where the machine refuses it.
bool MountWorkDirectories(const Appliance& appliance);

}  // namespace e2e
