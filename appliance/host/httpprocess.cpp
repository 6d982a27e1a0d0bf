#include "host/httpprocess.h"

#include "host/events.h"
#include "host/httpserver.h"
#include "host/requestclient.h"
#include "host/routes.h"
#include "host/uploadarea.h"

#include "libcamvora/notifications.h"
#include "libcamvora/operations.h"
#include "libcamvora/uploadfolder.h"
#include "platform/log.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <thread>

namespace host {

namespace {

// The store is quickest while one process keeps it open, and this one does not fork.
void KeepStoreOpen() {
    try {
        (void)camvora::LastNotificationId();
    } catch (const std::exception& error) {
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Cannot read the store: %s\n",
                 error.what());
    }
}

// Held back in every thread, so that the one that waits for it gets it.
sigset_t HoldBackStopSignal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

}  // namespace

int RunHttpProcess(UniqueFd listener, UniqueFd intake, const Module& module, const Credentials& credentials,
                   const Options& options) {
    const sigset_t stopSignal = HoldBackStopSignal();
    KeepStoreOpen();
    camvora::LoseRunningOperations();  // of an HTTP process that has ended
    RequestClient client(std::move(intake), options.requestLimit, options.requestTimeS);
    EventHub events(options.streamLimit, std::chrono::seconds(options.heartbeatS));
    const UploadArea uploadArea(camvora::UploadFolder());
    uploadArea.RemoveUnfinished();  // of an HTTP process that was killed
    Routes routes(module, credentials, options, uploadArea, client, events);
    HttpServer server(std::move(listener), options, events);
    routes.AddTo(server);
    server.LimitBodies([&routes](const httplib::Request& request) { return routes.BodyLimit(request); });
    std::thread stopper([&] {
        int signal = 0;
        sigwait(&stopSignal, &signal);
        server.Stop();
    });
    const bool served = server.Serve();
    kill(getpid(), SIGTERM);  // for the stopper, where it still waits
    stopper.join();
    return served ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace host
