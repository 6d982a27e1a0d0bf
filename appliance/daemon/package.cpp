// camvora-package stop|start: ends the daemons of the main package, or starts those again that ran before.
// Run by the package's start script.
#include "libcamvora/packagedaemons.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main(int argc, char** argv) {
    const std::string action = argc == 2 ? argv[1] : "";
    if (action != "stop" && action != "start") {
        (void)std::fputs("usage: camvora-package stop|start\n", stderr);
        return 2;
    }
    const bool isDone = action == "stop" ? camvora::StopPackageDaemons() : camvora::StartPackageDaemons();
    return isDone ? EXIT_SUCCESS : EXIT_FAILURE;
}
