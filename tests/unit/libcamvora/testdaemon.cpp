// A daemon for the tests: test_daemon FOLDER BEHAVIOUR TYPE.
#include "libcamvora/daemonlock.h"
#include "libcamvora/daemontable.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

int main(int, char** argv) {
    const std::string behaviour = argv[2];
    camvora::DaemonLock lock(camvora::DaemonLockFile(argv[1], std::atoi(argv[3])));
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
