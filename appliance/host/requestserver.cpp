#include "host/requestserver.h"

#include "host/frameworkerrors.h"
#include "host/processes.h"
#include "host/records.h"
#include "host/request.h"
#include "host/requestprocess.h"

#include "libcamvora/rememberstate.h"
#include "libcamvora/requestid.h"
#include "platform/log.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace host {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kOverdue{3};
constexpr timespec kLookAtDeadlines{1, 0};

std::string AbnormalEnd(int waitStatus) {
    if (WIFEXITED(waitStatus)) {
        return "Request process ended with status " + std::to_string(WEXITSTATUS(waitStatus)) + " on its way";
    }
    const int signal = WTERMSIG(waitStatus);
    return (signal == SIGALRM ? "Request took too long and was ended by signal "
                              : "Request process was ended by signal ") +
           std::to_string(signal);
}

void LogIfAbnormal(const std::string& requestId, int waitStatus) {
    if (WIFEXITED(waitStatus) && WEXITSTATUS(waitStatus) == kExitServed) {
        return;
    }
    camvora::SetRequestId(requestId);
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "%s\n", AbnormalEnd(waitStatus).c_str());
    camvora::SetRequestId("");
}

}  // namespace

RequestServer::RequestServer(UniqueFd intake, const Module& module, const Options& options)
    : intake_(std::move(intake)), module_(module), options_(options) {
    // A handler of its own lets the signal end the wait; outside of the wait it is held back.
    std::signal(SIGCHLD, [](int) {});
    sigset_t childEnded;
    sigemptyset(&childEnded);
    sigaddset(&childEnded, SIGCHLD);
    sigprocmask(SIG_BLOCK, &childEnded, &waitMask_);
    PrepareRequests();
}

void RequestServer::Run() {
    for (;;) {
        WaitForEvent();
        ReapEnded();
        EndOverdue();
        TakeArrivals();
    }
}

void RequestServer::WaitForEvent() {
    pollfd arrival{intake_.Get(), POLLIN, 0};
    (void)ppoll(&arrival, 1, running_.empty() ? nullptr : &kLookAtDeadlines, &waitMask_);
}

// A handler may have switched off the alarm that ends a request at its time limit.
void RequestServer::EndOverdue() {
    const auto now = steady_clock::now();
    for (auto& [pid, running] : running_) {
        if (now > running.deadline) {
            running.isOverdue = true;
            kill(pid, SIGKILL);
        }
    }
}

void RequestServer::TakeArrivals() {
    for (;;) {
        Arrival arrival = TakeArrival(intake_.Get());
        if (!arrival.connection.IsOpen()) {
            return;
        }
        Start(std::move(arrival));
    }
}

void RequestServer::Start(Arrival arrival) {
    camvora::RememberState();
    const pid_t self = getpid();
    const pid_t pid = fork();
    if (pid == 0) {
        EndWithParent(self);
        BecomeRequestProcess(arrival);
    }
    if (pid < 0) {
        const std::string reason = std::generic_category().message(errno);
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Failed to fork a request process: %s\n",
                 reason.c_str());
        (void)SendText(arrival.connection.Get(), Encode(ReplyFor(FrameworkError::kTooBusy)));
        return;
    }
    const auto deadline = steady_clock::now() + std::chrono::seconds(options_.requestTimeS) + kOverdue;
    running_.emplace(pid,
                     Running{std::move(arrival.connection), std::move(arrival.requestId), deadline, false});
}

void RequestServer::BecomeRequestProcess(const Arrival& arrival) noexcept {
    intake_.Close();
    for (auto& other : running_) {
        other.second.connection.Close();
    }
    std::signal(SIGCHLD, SIG_DFL);
    sigprocmask(SIG_SETMASK, &waitMask_, nullptr);
    ServeRequest(arrival.connection.Get(), arrival.requestId, module_, options_.requestTimeS);
}

void RequestServer::ReapEnded() {
    int waitStatus = 0;
    for (pid_t pid = 0; (pid = waitpid(-1, &waitStatus, WNOHANG)) > 0;) {
        const auto ended = running_.find(pid);
        if (ended != running_.end()) {
            if (ended->second.isOverdue) {
                waitStatus = SIGALRM;  // as if the alarm had ended it
            }
            LogIfAbnormal(ended->second.requestId, waitStatus);
            SendEnded(ended->second.connection.Get(), waitStatus);
            running_.erase(ended);
        }
    }
}

}  // namespace host
