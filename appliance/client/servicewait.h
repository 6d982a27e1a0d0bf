// Waiting for what a control action makes of a service.
#pragma once

#include "client/appliance.h"
#include "client/services.h"

#include <json/value.h>

#include <chrono>
#include <string>

namespace client {

class Progress;

// Looks at the service itself: that the action was ordered says nothing, and that none is under way does not
// say that it was done. Nor does the state alone, which may be as before: an action that has succeeded is in
// the operation log.
class ServiceWait {
public:
    //   appliance, progress  stay the caller's
    //   requestId            of the request that ordered the action; failures come with its log lines
    //   isOver               true when the action was over with the answer to that request
    //   limit                of the whole wait, from now on
    ServiceWait(const Appliance& appliance, Progress& progress, Service service, std::string requestId,
                bool isOver, std::chrono::seconds limit);

    // Waits until the service is started, or stopped. A started one is looked at once more two seconds later.
    //   returns  the appliance's last description of the service
    //   throws   Failure: kOtherOutcome when the action ended otherwise, kTimedOut after the limit, or as
    //            Appliance::Call does
    Json::Value ForStarted();
    Json::Value ForStopped();

private:
    using Condition = bool (*)(const Json::Value& info);

    Json::Value Started();
    Json::Value Await(Condition isReached);
    Json::Value Look() const;
    bool HasSucceeded();
    bool IsOver(const Json::Value& info) const;
    bool IsActionDone() const;
    Json::Value Params() const;

    template <typename Work>
    Json::Value WithLog(Work work);

    const Appliance& appliance_;
    Progress& progress_;
    const Service service_;
    const std::string requestId_;
    bool hasSucceeded_;  // known so far
    const std::chrono::seconds limit_;
    const std::chrono::steady_clock::time_point deadline_;
};

}  // namespace client
