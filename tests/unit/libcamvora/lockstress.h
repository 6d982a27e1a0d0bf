// Many processes at one critical section, some of them killed at random moments, with a witness of its own
// that tells whether two were ever inside at once.
#pragma once

#include <chrono>
#include <string>

namespace stress {

// The ways to enter, to leave and to remove the lock file afterwards.
struct Locking {
    int (*enter)(const std::string& folder, std::chrono::milliseconds limit);
    void (*leave)(int handle);
    void (*remove)(const std::string& folder);
};

// That of the library: the queue in the guard, and a removal that spares what is held.
extern const Locking kGuarded;

struct Plan {
    int processes;
    int cycles;
    bool kill;
};

struct Figures {
    int entered;
    int timedOut;
    int killed;
    int overlaps;      // two inside at once, as the witness saw it
    int signsMissing;  // no lock file to be seen while somebody was inside
    int late;          // a wait longer than its limit plus 200 ms
    long longestExcessMs;
};

// Does all cycles of begin, work, end and remove, and returns what was seen. `folder` exists and is empty.
Figures Run(const std::string& folder, const Locking& locking, const Plan& plan);

// The lock file that all are at.
std::string LockFile(const std::string& folder);

}  // namespace stress
