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

void LogIfAbnormal(const std::string& requestId, int waitStatus) {
    if (!WIFSIGNALED(waitStatus)) {
        return;
    }
    const int signal = WTERMSIG(waitStatus);
    camvora::SetRequestId(requestId);
    CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Request %s by signal %d\n",
             signal == SIGALRM ? "took too long and was ended" : "process was ended", signal);
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
        TakeArrivals();
    }
}

void RequestServer::WaitForEvent() {
    pollfd arrival{intake_.Get(), POLLIN, 0};
    (void)ppoll(&arrival, 1, nullptr, &waitMask_);
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
    running_.emplace(pid, Running{std::move(arrival.connection), std::move(arrival.requestId)});
}

void RequestServer::BecomeRequestProcess(const Arrival& arrival) {
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
            LogIfAbnormal(ended->second.requestId, waitStatus);
            SendEnded(ended->second.connection.Get(), waitStatus);
            running_.erase(ended);
        }
    }
}

}  // namespace host
