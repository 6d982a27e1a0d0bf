#include "client/output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace client {
namespace {

// Holds SIGINT back while it lives.
class ScopedInterruptHold {
public:
    ScopedInterruptHold() {
        sigset_t interrupt;
        sigemptyset(&interrupt);
        sigaddset(&interrupt, SIGINT);
        pthread_sigmask(SIG_BLOCK, &interrupt, &before_);
    }
    ~ScopedInterruptHold() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    ScopedInterruptHold(const ScopedInterruptHold&) = delete;
    ScopedInterruptHold& operator=(const ScopedInterruptHold&) = delete;

private:
    sigset_t before_{};
};

}  // namespace

int WriteWhole(int descriptor, std::string_view text) {
    const ScopedInterruptHold hold;
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return errno == EPIPE ? 0 : errno;
        }
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    return 0;
}

bool IsReaderGone(int descriptor) {
    struct pollfd output = {descriptor, 0, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & POLLERR) != 0;
}

}  // namespace client
