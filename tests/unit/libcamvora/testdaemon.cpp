// A daemon for the tests, called TYPE STARTER: its name says how it behaves, and its lock lies beside it.
#include "libcamvora/daemonlock.h"
#include "libcamvora/daemontable.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

int main(int, char** argv) {
    const std::filesystem::path self = argv[0];
    const std::string behaviour = self.filename();
    camvora::DaemonLock lock(camvora::DaemonLockFile(self.parent_path(), std::atoi(argv[1])));
    if (behaviour == "ends at once" || !lock.Hold()) {
        return EXIT_FAILURE;
    }
    if (behaviour == "ignores SIGTERM") {
        (void)signal(SIGTERM, SIG_IGN);
    }
    if (behaviour != "never comes up" && !lock.HoldReady()) {
        return EXIT_FAILURE;
    }
    for (;;) {
        pause();
    }
}
