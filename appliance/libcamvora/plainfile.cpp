#include "libcamvora/plainfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace camvora {

Descriptor OpenPlainFile(const char* path, std::size_t& sizeBytes) {
    Descriptor file(open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return Descriptor(-1);
    }
    sizeBytes = static_cast<std::size_t>(status.st_size);
    return file;
}

bool ReadUpTo(int file, void* bytes, std::size_t& sizeBytes) {
    std::size_t done = 0;
    while (done < sizeBytes) {
        const ssize_t size =
            pread(file, static_cast<char*>(bytes) + done, sizeBytes - done, static_cast<off_t>(done));
        if (size < 0 && errno != EINTR) {
            return false;
        }
        if (size == 0) {
            break;
        }
        done += size > 0 ? static_cast<std::size_t>(size) : 0;
    }
    sizeBytes = done;
    return true;
}

std::optional<std::string> ReadPlainFile(const char* path, std::size_t limitBytes) {
    std::size_t size = 0;
    const Descriptor file = OpenPlainFile(path, size);
    if (!file.IsOpen() || size > limitBytes) {
        return std::nullopt;
    }
    std::string content(size, '\0');
    if (!ReadUpTo(file.Number(), content.data(), size)) {
        return std::nullopt;
    }
    content.resize(size);
    return content;
}

}  // namespace camvora
