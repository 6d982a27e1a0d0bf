#include "libcamvora/unpack.h"

#include "libcamvora/descriptor.h"
#include "libcamvora/plainfile.h"
#include "libcamvora/tarend.h"
#include "libcamvora/treeusage.h"
#include "platform/files.h"
#include "platform/log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace camvora {

namespace {

namespace fs = std::filesystem;

constexpr char kTarOptions[] = "TAR_OPTIONS=--no-same-owner --no-same-permissions --force-local";

// Of tar itself, which holds a name as long as the archive has it, and prints it.
constexpr rlim_t kMemoryLimitBytes = rlim_t{512} << 20;
constexpr std::size_t kOutputLimitBytes = std::size_t{256} << 10;

// What cannot be looked at may be of any size.
bool IsWithin(const TreeUsage& usage, const UnpackLimits& limits) {
    return usage.isComplete && usage.sizeBytes <= limits.sizeBytes && usage.entries <= limits.entries;
}

bool IsFolder(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// A folder can be moved by whom may change it.
bool Rename(const fs::path& from, const fs::path& to) {
    if (rename(from.c_str(), to.c_str()) == 0) {
        return true;
    }
    struct stat status {};
    if (errno != EACCES || lstat(from.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        chmod(from.c_str(), S_IRWXU) != 0 || rename(from.c_str(), to.c_str()) != 0) {
        return false;
    }
    return chmod(to.c_str(), status.st_mode) == 0;
}

// Moves what is in one folder into another. What has arrived is in `arrived`.
bool MoveEntries(const fs::path& from, const fs::path& to, std::vector<fs::path>& arrived) {
    std::error_code failure;
    std::vector<fs::path> merging = {""};
    while (!merging.empty()) {
        const fs::path part = merging.back();
        merging.pop_back();
        for (fs::directory_iterator entry(from / part, failure); entry != fs::directory_iterator();
             entry.increment(failure)) {
            const fs::path name = part / entry->path().filename();
            if (IsFolder(from / name) && IsFolder(to / name)) {
                merging.push_back(name);
            } else if (CVRm(to / name) == 0 && Rename(from / name, to / name)) {
                arrived.push_back(to / name);
            } else {
                return false;
            }
        }
        if (failure) {
            return false;
        }
    }
    return true;
}

bool TakeOver(const std::string& stage, const std::string& folder) {
    std::vector<fs::path> arrived;
    if (MoveEntries(stage, folder, arrived)) {
        return true;
    }
    for (const fs::path& path : arrived) {
        (void)CVRm(path);
    }
    return false;
}

bool IsAcceptable(const std::string& stage, const UnpackLimits& limits) {
    const TreeUsage usage = UsageOf(stage);
    return !usage.hasSpecialFiles && IsWithin(usage, limits);
}

// False for what is no plain file, which tar could wait for for ever, and for an archive without its end.
bool HasEnd(const std::string& archive) {
    std::size_t size = 0;
    const Descriptor file = OpenPlainFile(archive.c_str(), size);
    return file.IsOpen() && HasTarEnd(file.Number(), static_cast<off_t>(size));
}

ProgramEnd UnpackInto(const std::string& stage, Program tar, const std::string& archive,
                      const UnpackLimits& limits) {
    tar.arguments = {"-C", stage, "-xvf", archive};
    tar.environment.emplace_back(kTarOptions);
    tar.fileSizeLimitBytes = static_cast<rlim_t>(limits.sizeBytes);
    tar.memoryLimitBytes = kMemoryLimitBytes;
    tar.outputLimitBytes = kOutputLimitBytes;
    tar.mayGoOn = [&] { return IsWithin(UsageOf(stage), limits); };
    const ProgramEnd end = RunProgram(tar);
    (void)chmod(stage.c_str(), S_IRWXU);  // an archive may set the mode of "."
    return end;
}

}  // namespace

ProgramEnd Unpack(Program tar, const std::string& folder, const std::string& archive,
                  const UnpackLimits& limits) {
    ProgramEnd end;
    std::string stage = folder + "/.unpacking-XXXXXX";  // goes with the folder when we are killed
    if (HasEnd(archive) && mkdtemp(stage.data()) != nullptr) {
        end = UnpackInto(stage, std::move(tar), archive, limits);
        if (end.exitStatus == 0 && !(IsAcceptable(stage, limits) && TakeOver(stage, folder))) {
            end.exitStatus = -1;
        }
        (void)CVRm(stage);
    }
    if (end.exitStatus != 0) {
        CVPrintf(0, nullptr, nullptr, "unpack", __LINE__, __func__,
                 "Failed to unpack [%s]; nothing of it stays\n", archive.c_str());
    }
    return end;
}

}  // namespace camvora
