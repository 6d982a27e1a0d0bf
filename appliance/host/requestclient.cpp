#include "host/requestclient.h"

#include "host/frameworkerrors.h"
#include "host/intake.h"
#include "host/records.h"

#include <sys/wait.h>

#include <csignal>
#include <utility>

namespace host {

namespace {

// Beyond the time limit, which the request process keeps itself.
constexpr int kExtraWaitS = 5;
constexpr int kPingWaitS = 3;

// One of a limited number of places, for as long as it lives.
class Slot {
public:
    Slot(std::atomic<int>& taken, int limit) : taken_(taken), isFree_(taken_.fetch_add(1) < limit) {}
    ~Slot() { taken_.fetch_sub(1); }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;
    bool IsFree() const { return isFree_; }

private:
    std::atomic<int>& taken_;
    bool isFree_;
};

Reply ReplyForEnd(int waitStatus) {
    if (!WIFSIGNALED(waitStatus)) {
        return ReplyFor(FrameworkError::kNoAnswer);
    }
    const int signal = WTERMSIG(waitStatus);
    return signal == SIGALRM ? ReplyFor(FrameworkError::kTimedOut)
                             : ReplyFor(FrameworkError::kHandlerCrashed, "signal " + std::to_string(signal));
}

}  // namespace

RequestClient::RequestClient(UniqueFd intake, int requestLimit, int requestTimeS)
    : intake_(std::move(intake)), requestLimit_(requestLimit), requestTimeS_(requestTimeS) {}

Reply RequestClient::Call(const std::string& requestId, const Request& request, UniqueFd& connection) {
    const Slot slot(running_, requestLimit_);
    return slot.IsFree() ? Exchange(requestId, request, requestTimeS_ + kExtraWaitS, connection)
                         : ReplyFor(FrameworkError::kTooBusy);
}

Reply RequestClient::Ping(const std::string& requestId) const {
    UniqueFd connection;
    Reply reply = Exchange(requestId, Request(), kPingWaitS, connection);
    return reply.httpStatus == 200 ? reply : ReplyFor(FrameworkError::kRequestServerAway);
}

Reply RequestClient::Exchange(const std::string& requestId, const Request& request, int waitLimitS,
                              UniqueFd& connection) const {
    connection = Connect(intake_.Get(), requestId, waitLimitS);
    if (!connection.IsOpen() || !SendText(connection.Get(), Encode(request))) {
        return ReplyFor(FrameworkError::kRequestServerAway);
    }
    std::string text;
    int waitStatus = 0;
    switch (ReceiveText(connection.Get(), text, waitStatus)) {
        case Received::kText:
            return DecodeReply(std::move(text));
        case Received::kEnded:
            return ReplyForEnd(waitStatus);
        case Received::kTimedOut:
            return ReplyFor(FrameworkError::kTimedOut);
        case Received::kClosed:
            break;
    }
    return ReplyFor(FrameworkError::kRequestServerAway);
}

}  // namespace host
