#include "libcamvora/daemonlock.h"

#include "libcamvora/descriptor.h"

#include <fcntl.h>

namespace camvora {

bool IsLockHeld(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct flock lock {};
    lock.l_type = F_WRLCK;
    return file.IsOpen() && fcntl(file.Number(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace camvora
