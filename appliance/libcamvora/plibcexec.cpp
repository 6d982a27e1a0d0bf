#include "libcamvora/keyvalue.h"
#include "libcamvora/paths.h"
#include "libcamvora/program.h"
#include "libcamvora/records.h"
#include "libcamvora/requestid.h"
#include "libcamvora/store.h"
#include "libcamvora/unpack.h"
#include "platform/plibc.h"

#include <string>
#include <vector>

namespace {

using camvora::NumberOfKey;
using camvora::Program;
using camvora::ProgramEnd;

constexpr char kTar[] = "/bin/tar";
constexpr long long kMiB = 1LL << 20;

// The defaults hold where the file does not say otherwise.
camvora::UnpackLimits ReadUnpackLimits() {
    return {NumberOfKey(camvora::kProgramsConf, "unpack_size_limit_mib", 2048) * kMiB,
            NumberOfKey(camvora::kProgramsConf, "unpack_entries_limit", 50'000)};
}

Program MakeProgram(const char* path, const std::vector<std::string>& arguments) {
    const std::chrono::seconds timeLimit(NumberOfKey(camvora::kProgramsConf, "time_limit_s", 600));
    return {path,
            arguments,
            {"PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LANG=C.UTF-8",
             std::string(camvora::kRequestIdVariable) + "=" + camvora::RequestId()},
            camvora::kProgramLogFile,
            timeLimit};
}

bool IsUnpacking(const Program& program) {
    const auto& arguments = program.arguments;
    return program.path == kTar && arguments.size() == 4 && arguments[0] == "-C" && arguments[2] == "-xvf";
}

ProgramEnd Run(const Program& program) {
    return IsUnpacking(program)
               ? camvora::Unpack(program, program.arguments[1], program.arguments[3], ReadUnpackLimits())
               : camvora::RunProgram(program);
}

}  // namespace

int PLIBCExec(const char* path, const char* arg1, const char* arg2, const char* arg3, const char* arg4) {
    std::vector<std::string> arguments;
    for (const char* argument : {arg1, arg2, arg3, arg4}) {
        if (argument == nullptr) {
            break;
        }
        arguments.emplace_back(argument);
    }
    const bool isThere = PLIBCFileExist(path) != 0;
    ProgramEnd end = Run(MakeProgram(path, arguments));
    const int exitStatus = end.exitStatus;
    if (!isThere) {
        end.exitStatus = camvora::kNoSuchProgram;
    }
    (void)camvora::TheStore().WriteLater([&](SQLite::Database& database) {  // a failure is in the log
        camvora::AddProgramRun(database, path, arguments, end);
    });
    return exitStatus;
}
