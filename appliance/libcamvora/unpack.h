// tar as the appliance has it: an archive is unpacked whole or not at all.
#pragma once

#include "libcamvora/program.h"

#include <string>

namespace camvora {

struct UnpackLimits {
    long long sizeBytes;  // of all files together
    long long entries;
};

// Runs `tar` with the arguments "-C", `folder`, "-xvf" and `archive`, but in a new folder within `folder`,
// and moves what arrived to its place when tar succeeded: folders merge, anything else replaces what had its
// name. When tar fails, the archive is cut short, goes beyond the limits or holds special files, nothing of
// it stays, one line in the diagnostic log says so, and the exit status is not 0. Owners and set-id bits are
// not taken over, and a file name with ":" is a file name.
//   tar  the program with its environment, output file and time limit; the rest is set here
ProgramEnd Unpack(Program tar, const std::string& folder, const std::string& archive,
                  const UnpackLimits& limits);

}  // namespace camvora
