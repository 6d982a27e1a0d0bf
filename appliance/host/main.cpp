// camvora-host: serves a web API module over HTTP.
#include "host/credentials.h"
#include "host/module.h"
#include "host/options.h"
#include "host/supervisor.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    host::Options options;
    int exitStatus = EXIT_SUCCESS;
    if (!host::ParseOptions(argc, argv, options, exitStatus)) {
        return exitStatus;
    }
    try {
        const host::Credentials credentials(host::AccessToken::ReadFrom(options.tokenFd),
                                            host::AccessToken::Draw());
        close_range(STDERR_FILENO + 1, ~0U, 0);  // whatever else the caller left open
        const host::Module module(options.modulePath);
        return host::Supervisor(options, module, credentials).Run();
    } catch (const std::exception& error) {
        std::cerr << "camvora-host: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
