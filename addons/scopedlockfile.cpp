#include "addons/scopedlockfile.h"

#include "platform/files.h"
#include "platform/locks.h"

#include <utility>

ScopedLockFile::ScopedLockFile(std::string path, int waitLimitMs)
    : path_(std::move(path)), handle_(BeginCriticalSection(path_, waitLimitMs)) {}

ScopedLockFile::~ScopedLockFile() {
    if (IsHeld()) {
        EndCriticalSection(handle_);
        (void)RemoveFileIfExist(path_);
    }
}
