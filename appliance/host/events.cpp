#include "host/events.h"

#include "host/appliancestate.h"

#include "libcamvora/notifications.h"
#include "platform/log.h"

#include <json/writer.h>

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

namespace host {

namespace {

constexpr std::chrono::milliseconds kPollInterval{100};
constexpr std::size_t kBatch = 100;
constexpr int kPollsPerState = 3;
constexpr char kHeartbeat[] = ": still here\n\n";

std::string EventText(const char* event, const Json::Value& data) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return std::string("event: ") + event + "\ndata: " + Json::writeString(builder, data) + "\n\n";
}

std::string EventText(const char* event, long long id, const Json::Value& data) {
    return "id: " + std::to_string(id) + "\n" + EventText(event, data);
}

std::string NotificationText(const camvora::Notification& notification) {
    Json::Value data(Json::objectValue);
    data["id"] = Json::Int64{notification.id};
    data["time"] = notification.time;
    data["request"] = notification.requestId;
    data["type"] = notification.type;
    for (const std::string& text : notification.texts) {
        data["texts"].append(text);
    }
    return EventText("notification", notification.id, data);
}

}  // namespace

EventStream::EventStream(EventHub& hub, std::optional<long long> lastSeen) : hub_(hub), lastSeen_(lastSeen) {}

EventStream::~EventStream() {
    hub_.Leave();
}

std::string EventStream::Next() {
    try {
        return std::exchange(hasBegun_, true) ? hub_.Continue(*lastSeen_, stateSeen_)
                                              : hub_.Begin(lastSeen_, stateSeen_);
    } catch (const std::exception& error) {
        CVPrintf(0, nullptr, nullptr, "host", __LINE__, __func__, "Event stream ends: %s\n", error.what());
        return "";
    }
}

EventHub::EventHub(int streamLimit, std::chrono::seconds heartbeat)
    : streamLimit_(streamLimit), heartbeat_(heartbeat), poller_([this] { Poll(); }) {}

EventHub::~EventHub() {
    Stop();
    poller_.join();
}

std::shared_ptr<EventStream> EventHub::Open(std::optional<long long> lastSeen) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (streams_ == streamLimit_) {
        return nullptr;
    }
    std::shared_ptr<EventStream> stream(new EventStream(*this, lastSeen));
    ++streams_;
    changed_.notify_all();
    return stream;
}

void EventHub::Stop() {
    const std::lock_guard<std::mutex> lock(mutex_);
    isStopped_ = true;
    changed_.notify_all();
}

void EventHub::Leave() {
    const std::lock_guard<std::mutex> lock(mutex_);
    --streams_;
}

// The snapshot carries the id after which notifications follow, so that a client that loses the connection
// next resumes in the right place. The newest id is read first: what comes meanwhile is then seen twice, not
// lost.
std::string EventHub::Begin(std::optional<long long>& lastSeen, long long& stateSeen) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stateSeen = stateNumber_;
    }
    const long long newestId = camvora::LastNotificationId();
    lastSeen = std::min(lastSeen.value_or(newestId), newestId);
    Json::Value snapshot = ApplianceState();
    snapshot["lastNotification"] = Json::Int64{newestId};
    return EventText("snapshot", *lastSeen, snapshot);
}

std::string EventHub::Continue(long long& lastSeen, long long& stateSeen) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait_for(lock, heartbeat_,
                      [&] { return isStopped_ || newestId_ > lastSeen || stateNumber_ > stateSeen; });
    if (isStopped_) {
        return "";
    }
    const long long newestId = newestId_;
    std::string text = stateNumber_ > stateSeen ? state_ : "";
    stateSeen = stateNumber_;
    lock.unlock();

    const std::vector<camvora::Notification> missed =
        camvora::NotificationsAfter(lastSeen, static_cast<int>(kBatch));
    for (const camvora::Notification& notification : missed) {
        text += NotificationText(notification);
        lastSeen = notification.id;
    }
    if (missed.size() < kBatch) {
        lastSeen = std::max(lastSeen, newestId);  // those between have been dropped
    }
    return text.empty() ? kHeartbeat : text;
}

void EventHub::Poll() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (int polls = 0; !isStopped_; ++polls) {
        changed_.wait(lock, [this] { return isStopped_ || streams_ > 0; });
        lock.unlock();
        const long long newestId = ReadNewestId();
        const std::string state = polls % kPollsPerState == 0 ? ReadState() : "";
        lock.lock();
        if (newestId > newestId_) {
            newestId_ = newestId;
            changed_.notify_all();
        }
        if (!state.empty() && state != state_) {
            state_ = state;
            ++stateNumber_;
            changed_.notify_all();
        }
        changed_.wait_for(lock, kPollInterval, [this] { return isStopped_; });
    }
}

// Both tell nothing when the store cannot be read: the streams notice that themselves.
long long EventHub::ReadNewestId() {
    try {
        return camvora::LastNotificationId();
    } catch (const std::exception&) {
        return 0;
    }
}

std::string EventHub::ReadState() {
    try {
        return EventText("state", ApplianceState());
    } catch (const std::exception&) {
        return "";
    }
}

}  // namespace host
