#include "libcamvora/plainfile.h"

#include "libcamvora/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace camvora {

std::optional<std::string> ReadPlainFile(const char* path, std::size_t limitBytes) {
    const Descriptor file(open(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        static_cast<std::size_t>(status.st_size) > limitBytes) {
        return std::nullopt;
    }
    std::string content(static_cast<std::size_t>(status.st_size), '\0');
    const ssize_t sizeRead = pread(file.Number(), content.data(), content.size(), 0);
    if (sizeRead < 0) {
        return std::nullopt;
    }
    content.resize(static_cast<std::size_t>(sizeRead));  // less where the file was cut meanwhile
    return content;
}

}  // namespace camvora
