// A daemon for the tests: test_daemon FOLDER BEHAVIOUR TYPE. Writes what it sees of itself to the file
// "seen".
#include "libcamvora/daemonlock.h"
#include "libcamvora/daemontable.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

void WriteWhatItSees(const std::string& path) {
    std::ofstream seen(path);
    seen << (getsid(0) == getpid() ? "session leader\n" : "member\n");
    seen << std::filesystem::current_path().string() << '\n';
    for (char** variable = environ; *variable != nullptr; ++variable) {
        // A shell between adds its own.
        if (std::string(*variable).rfind("CAMVORA", 0) == 0 || std::string(*variable).rfind("TEST", 0) == 0) {
            seen << *variable << '\n';
        }
    }
    for (const int fd : {0, 1, 2}) {
        seen << std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd)).string() << '\n';
    }
    seen << "above: " << (fcntl(50, F_GETFD) >= 0 ? "50" : "none") << '\n';
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    seen << (sigismember(&blocked, SIGUSR1) == 1 ? "blocked" : "open") << '\n';
}

}  // namespace

int main(int, char** argv) {
    const std::string folder = argv[1];
    const std::string behaviour = argv[2];
    const std::string lock = camvora::DaemonLockFile(folder, std::atoi(argv[3]));
    if (behaviour == "ends at once" || !camvora::HoldDaemonLock(lock)) {
        return EXIT_FAILURE;
    }
    if (behaviour == "ignores SIGTERM") {
        (void)signal(SIGTERM, SIG_IGN);
    }
    WriteWhatItSees(folder + "/seen");
    if (behaviour != "never comes up" && !camvora::HoldReadyLock(lock)) {
        return EXIT_FAILURE;
    }
    for (;;) {
        pause();
    }
}
