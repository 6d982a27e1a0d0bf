#include "client/commandline.h"
#include "client/deferredinterrupt.h"
#include "client/exitstatus.h"
#include "client/interruptnote.h"

#include <unistd.h>

#include <csignal>
#include <cstring>

namespace {

// Nothing is to be tidied up: output is written when it is whole, and that of a stream in whole lines.
extern "C" void EndInterrupted(int /*signal*/) {
    if (client::DeferredInterrupt::Note()) {
        return;
    }
    constexpr char kText[] = "camvoractl: Interrupted\n";
    (void)!write(STDERR_FILENO, kText, sizeof(kText) - 1);
    const char* note = client::InterruptNote::Present();
    (void)!write(STDERR_FILENO, note, strlen(note));
    _exit(static_cast<int>(client::ExitStatus::kInterrupted));
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    // A shell starts background jobs with the interrupt ignored; that stays.
    if (std::signal(SIGINT, EndInterrupted) == SIG_IGN) {
        std::signal(SIGINT, SIG_IGN);
    }
    return client::RunCommandLine(argc, argv);
}
