// The programs that were run with PLIBCExec, for those who want to know how they ended.
#pragma once

#include <string>
#include <vector>

namespace camvora {

struct ProgramEnd;

inline constexpr int kArgumentsLimit = 4;
inline constexpr int kNoSuchProgram = -2;  // the exit status of one whose file is not there

struct ProgramRun {
    long long id;           // grows by the order in which they ended
    std::string time;       // of the end; UTC, as in "2026-03-01T12:00:00.123Z"
    std::string requestId;  // empty when no request caused it
    std::string path;
    std::vector<std::string> arguments;
    int exitStatus;  // -1 when it could not be run, was ended at a limit or was killed, or as below
    long long durationMs;
    long long peakMemoryKiB;
};

// The newest programs that the request `requestId` has run, or that all have where it is empty: at most
// `limit`, in the order of their ends. Throws std::exception when the store cannot be read.
std::vector<ProgramRun> ProgramRunsOf(const std::string& requestId, int limit);

}  // namespace camvora
