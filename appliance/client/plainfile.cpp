#include "client/plainfile.h"

#include "client/failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace client {
namespace {

Failure CannotRead(const std::string& path, int error) {
    const bool isMissing = error == ENOENT || error == ENOTDIR;
    return {isMissing ? ExitStatus::kNotFound : ExitStatus::kFailed,
            "Cannot read " + path + ": " + strerror(error)};
}

}  // namespace

// Whatever has this name: opening it must not block.
PlainFile::PlainFile(const std::string& path)
    : path_(path), descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    struct stat status {};
    if (descriptor_ < 0) {
        throw CannotRead(path_, errno);
    }
    if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        (void)close(descriptor_);
        throw Failure(ExitStatus::kFailed, "Cannot read " + path_ + ": it is no plain file");
    }
    sizeBytes_ = static_cast<std::uint64_t>(status.st_size);
}

PlainFile::~PlainFile() {
    (void)close(descriptor_);
}

std::size_t PlainFile::ReadAt(std::uint64_t offset, char* buffer, std::size_t sizeBytes) const {
    ssize_t size = -1;
    do {
        size = pread(descriptor_, buffer, sizeBytes, static_cast<off_t>(offset));
    } while (size < 0 && errno == EINTR);
    if (size < 0) {
        throw CannotRead(path_, errno);
    }
    return static_cast<std::size_t>(size);
}

std::string PlainFile::Text(std::size_t limitBytes) const {
    std::string text(std::min<std::uint64_t>(sizeBytes_, limitBytes), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const std::size_t size = ReadAt(filled, text.data() + filled, text.size() - filled);
        if (size == 0) {
            break;
        }
        filled += size;
    }
    text.resize(filled);
    return text;
}

}  // namespace client
