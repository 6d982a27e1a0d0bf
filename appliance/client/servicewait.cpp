#include "client/servicewait.h"

#include "client/failure.h"
#include "client/jsontext.h"
#include "client/progress.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace client {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPollInterval{250};
constexpr milliseconds kSecondLook{2000};

// How long a state may last before it is asked whether an action is still under way. An action that has not
// begun may wait its turn for three seconds.
constexpr milliseconds kPatienceInProgress{1000};
constexpr milliseconds kPatienceBefore{4000};

constexpr int kStopped = 0;
constexpr int kStarted = 1;
constexpr int kInProgress = 4;

bool Is(const Json::Value& info, int status, bool isRunning) {
    return Member(info, "status") == Json::Value(status) &&
           Member(info, "blRunning") == Json::Value(isRunning);
}

bool IsStarted(const Json::Value& info) {
    return Is(info, kStarted, true);
}

bool IsStopped(const Json::Value& info) {
    return Is(info, kStopped, false);
}

bool IsInProgress(const Json::Value& info) {
    return Member(info, "status") == Json::Value(kInProgress);
}

bool IsSameState(const Json::Value& info, const Json::Value& other) {
    return Member(info, "status") == Member(other, "status") &&
           Member(info, "blRunning") == Member(other, "blRunning");
}

std::string StateOf(const Json::Value& info) {
    const bool isRunning = Member(info, "blRunning") == Json::Value(true);
    return "has the status \"" + LeafText(Member(info, "statusName")) + "\" and is " +
           (isRunning ? "running" : "not running");
}

}  // namespace

ServiceWait::ServiceWait(const Appliance& appliance, Progress& progress, Service service,
                         std::string requestId, bool isOver, std::chrono::seconds limit)
    : appliance_(appliance),
      progress_(progress),
      service_(std::move(service)),
      requestId_(std::move(requestId)),
      hasSucceeded_(isOver),
      limit_(limit),
      deadline_(steady_clock::now() + limit) {}

Json::Value ServiceWait::ForStarted() {
    return WithLog([this] { return Started(); });
}

Json::Value ServiceWait::ForStopped() {
    return WithLog([this] { return Await(IsStopped); });
}

template <typename Work>
Json::Value ServiceWait::WithLog(Work work) {
    try {
        return work();
    } catch (Failure& failure) {
        if (failure.requestId.empty()) {
            appliance_.AddRequest(failure, requestId_);
        }
        throw;
    }
}

Json::Value ServiceWait::Started() {
    for (;;) {
        (void)Await(IsStarted);
        progress_.Step(service_.name + " is running; looking again in two seconds");
        std::this_thread::sleep_for(kSecondLook);
        Json::Value info = Look();
        if (IsStarted(info)) {
            return info;
        }
        if (!IsInProgress(info)) {
            throw Failure(ExitStatus::kOtherOutcome,
                          service_.name + " was running; two seconds later it " + StateOf(info));
        }
        // Another action has followed.
    }
}

Json::Value ServiceWait::Await(Condition isReached) {
    progress_.Step("Waiting for " + service_.name);
    Json::Value last;
    steady_clock::time_point seenSince = steady_clock::now();
    for (;;) {
        const bool hasSucceeded = HasSucceeded();  // before the look, which then shows what the action made
        Json::Value info = Look();
        if (hasSucceeded && isReached(info)) {
            return info;
        }
        const steady_clock::time_point now = steady_clock::now();
        if (now >= deadline_) {
            throw Failure(ExitStatus::kTimedOut, "After " + std::to_string(limit_.count()) + " s, " +
                                                     service_.name + " " + StateOf(info) +
                                                     "; --timeout waits longer");
        }
        if (!IsSameState(info, last)) {
            seenSince = now;
        }
        const milliseconds patience = IsInProgress(info) ? kPatienceInProgress : kPatienceBefore;
        if (now - seenSince >= patience && IsOver(info) && HasSucceeded() == hasSucceeded) {
            throw Failure(ExitStatus::kOtherOutcome,
                          (hasSucceeded ? "The action is over, but " : "The action did not succeed: ") +
                              service_.name + " " + StateOf(info));
        }
        last = std::move(info);
        std::this_thread::sleep_for(kPollInterval);
    }
}

bool ServiceWait::HasSucceeded() {
    hasSucceeded_ = hasSucceeded_ || !appliance_.LogEntriesOf(requestId_).empty();
    return hasSucceeded_;
}

Json::Value ServiceWait::Look() const {
    return appliance_.Call("GetInfo", Params());
}

// True when no action is under way and the state is still that of `info`.
bool ServiceWait::IsOver(const Json::Value& info) const {
    return IsActionDone() && IsSameState(info, Look());
}

// The appliance lets the answer wait for the end of an action, for up to twenty seconds.
bool ServiceWait::IsActionDone() const {
    const auto left = std::chrono::ceil<std::chrono::seconds>(deadline_ - steady_clock::now());
    try {
        const Json::Value answer =
            appliance_.Within(std::max(left, std::chrono::seconds(1))).Call("CheckEnableDone", Params());
        return Member(answer, "blDone") == Json::Value(true);
    } catch (const Failure& failure) {
        if (failure.status != ExitStatus::kTimedOut) {
            throw;
        }
        return false;
    }
}

Json::Value ServiceWait::Params() const {
    Json::Value params;
    params["service"] = service_.number;
    return params;
}

}  // namespace client
