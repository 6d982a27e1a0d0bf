#include "host/supervisor.h"

#include "host/addressfile.h"
#include "host/httpprocess.h"
#include "host/intake.h"
#include "host/processes.h"
#include "host/requestserver.h"

#include "libcamvora/diagnosticlog.h"
#include "libcamvora/lockguards.h"
#include "libcamvora/uploadfolder.h"
#include "platform/log.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace host {

namespace {

constexpr char kSchedulerProgram[] = "/var/packages/Camvora/target/bin/camvora-scheduler";
constexpr int kUpkeepIntervalMs = 5'000;
constexpr int kStopPollMs = 50;
constexpr std::chrono::milliseconds kEndGrace{2000};
constexpr std::chrono::hours kUploadLife{24};

UniqueFd OpenSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGCHLD, SIGTERM, SIGINT, SIGHUP}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return UniqueFd(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

// True when one of the signals that have come means to stop.
bool ReadSignals(const UniqueFd& signals) {
    bool stop = false;
    signalfd_siginfo signal{};
    while (read(signals.Get(), &signal, sizeof(signal)) == sizeof(signal)) {
        stop = stop || signal.ssi_signo != SIGCHLD;
    }
    return stop;
}

// A program of its own, as what it does is no matter of the web framework.
int BecomeScheduler() {
    (void)execl(kSchedulerProgram, kSchedulerProgram, nullptr);
    return EXIT_FAILURE;
}

bool HasEnded(int input) {
    char discarded[256];
    return read(input, discarded, sizeof(discarded)) <= 0;
}

}  // namespace

Supervisor::Supervisor(const Options& options, const Module& module, const AccessToken& token)
    : options_(options),
      module_(module),
      token_(token),
      signals_(OpenSignals()),
      listener_(Listen(options.listenAddress, options.port)),
      uploadArea_(camvora::UploadFolder()),
      children_{{{"request server", true, [this] { return RunRequestServer(); }},
                 {"HTTP server", true, [this] { return RunHttpProcess(); }},
                 {"scheduler", false, BecomeScheduler}}} {
    std::tie(handIn_, takeOut_) = OpenIntake();
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

int Supervisor::RunRequestServer() {
    signals_.Close();
    listener_.socket.Close();
    handIn_.Close();
    RequestServer(std::move(takeOut_), module_, options_).Run();
}

int Supervisor::RunHttpProcess() {
    signals_.Close();
    takeOut_.Close();
    return host::RunHttpProcess(std::move(listener_.socket), std::move(handIn_), module_, token_, options_);
}

int Supervisor::Run() {
    uploadArea_.Make();
    camvora::SweepLockFiles();
    for (Child& child : children_) {
        Start(child);
    }
    const AddressFile address(options_.addressFile, listener_.url);
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Serving %zu methods at %s\n",
             module_.Rows().size(), listener_.url.c_str());
    const bool told = Supervise();
    Stop();
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Stopped\n");
    return told ? 0 : 1;
}

void Supervisor::Start(Child& child) {
    child.pid = StartProcess(child.body);
}

// Returns true when told to stop, false when a process keeps failing.
bool Supervisor::Supervise() {
    while (!IsToldToStop(kUpkeepIntervalMs)) {
        if (!RestartEnded()) {
            return false;
        }
        camvora::RotateLogsIfLarge();
        camvora::SweepLockFiles();
        uploadArea_.RemoveOlderThan(kUploadLife);
    }
    return true;
}

bool Supervisor::IsToldToStop(int waitLimitMs) {
    std::array<pollfd, 2> events{{{signals_.Get(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
    poll(events.data(), options_.stopOnEof ? 2 : 1, waitLimitMs);
    const bool signalled = ReadSignals(signals_);
    return signalled || (events[1].revents != 0 && HasEnded(STDIN_FILENO));
}

// Reaps every process that has ended, also those that lost their parents, and starts its own again.
bool Supervisor::RestartEnded() {
    for (pid_t pid = 0; (pid = waitpid(-1, nullptr, WNOHANG)) > 0;) {
        for (Child& child : children_) {
            if (child.pid == pid && !Restart(child)) {
                return false;
            }
        }
    }
    return true;
}

// Returns false when it keeps ending and is needed.
bool Supervisor::Restart(Child& child) {
    child.pid = -1;
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "The %s has ended; starting it again\n",
             child.name);
    if (child.restarts.Spend(std::chrono::steady_clock::now())) {
        Start(child);
        return true;
    }
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "It keeps ending; giving up\n");
    return !child.isVital;
}

void Supervisor::Stop() {
    // The HTTP server ends when the requests that run have been answered; nobody needs the request server
    // then, but what requests have left at work still comes to its end.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(options_.drainTimeS);
    auto& [requestServer, httpServer, scheduler] = children_;
    StopChild(scheduler, deadline);
    StopChild(httpServer, deadline);
    StopChild(requestServer, std::chrono::steady_clock::now());
    AwaitForkedChildren(deadline);
    EndDescendants(kEndGrace);
}

void Supervisor::StopChild(Child& child, std::chrono::steady_clock::time_point deadline) {
    if (child.pid < 0) {
        return;
    }
    kill(child.pid, SIGTERM);
    while (waitpid(child.pid, nullptr, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() >= deadline) {
            kill(child.pid, SIGKILL);
        }
        pollfd signals{signals_.Get(), POLLIN, 0};
        poll(&signals, 1, kStopPollMs);
        (void)ReadSignals(signals_);
    }
}

}  // namespace host
