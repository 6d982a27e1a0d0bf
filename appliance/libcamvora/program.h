// A program that is run and waited for, and that does not outlive its caller.
#pragma once

#include <sys/resource.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace camvora {

struct Program {
    std::string path;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;  // all of it, as "NAME=value"
    std::string outputFile;                // standard output and error are added to it
    std::chrono::milliseconds timeLimit;
    std::optional<rlim_t> fileSizeLimitBytes = std::nullopt;  // of each file that it writes
    std::optional<rlim_t> memoryLimitBytes = std::nullopt;    // of addresses, for each process

    // Of what it prints; where there is a limit, a process that outlives it can print no more.
    std::optional<std::size_t> outputLimitBytes = std::nullopt;

    // Asked a few times a second while the program runs, in another process; false ends the program.
    std::function<bool()> mayGoOn = [] { return true; };
};

struct ProgramEnd {
    int exitStatus = -1;  // -1 when it could not be run or did not end by itself
    std::chrono::milliseconds duration{0};
    long peakMemoryKiB = 0;  // at least what the caller holds
};

// Runs the program without a shell, in a process group of its own, with nothing to read on standard input and
// none of the caller's descriptors, signal settings and environment. When it ends, is ended at its limit, or
// the caller dies (however that comes about), all that is left of its group is killed. Descriptors that the
// caller has open, and the locks on them, last until then.
ProgramEnd RunProgram(const Program& program);

}  // namespace camvora
