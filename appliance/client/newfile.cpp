#include "client/newfile.h"

#include "client/failure.h"
#include "client/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace client {
namespace {

constexpr mode_t kAllMode = 0644;
constexpr mode_t kOwnerMode = 0600;

Failure CannotWrite(const std::string& path, int error) {
    return {ExitStatus::kFailed, "Cannot write " + path + ": " + strerror(error)};
}

}  // namespace

NewFile::NewFile(std::string path, Readers readers)
    : path_(std::move(path)),
      temporaryPath_(path_ + ".XXXXXX"),
      readers_(readers),
      descriptor_(mkostemp(temporaryPath_.data(), O_CLOEXEC)) {
    if (descriptor_ < 0) {
        throw CannotWrite(path_, errno);
    }
}

NewFile::~NewFile() {
    (void)close(descriptor_);
    if (!temporaryPath_.empty()) {
        (void)unlink(temporaryPath_.c_str());
    }
}

void NewFile::Write(std::string_view text) {
    if (const int error = WriteWhole(descriptor_, text); error != 0) {
        throw CannotWrite(path_, error);
    }
}

void NewFile::Finish() {
    const mode_t mode = readers_ == Readers::kAll ? kAllMode : kOwnerMode;
    if (fchmod(descriptor_, mode) != 0 || fsync(descriptor_) != 0 ||
        rename(temporaryPath_.c_str(), path_.c_str()) != 0) {
        throw CannotWrite(path_, errno);
    }
    temporaryPath_.clear();
}

}  // namespace client
