// Client notifications as they were sent with CVClientNotify::Notify, for those who pass them on.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace camvora {

struct Notification {
    long long id;           // grows by the order of sending, never used twice
    std::string time;       // UTC, as in "2026-03-01T12:00:00.123Z"
    std::string requestId;  // empty when no request caused it
    int type;
    std::array<std::string, 3> texts;
};

// The id of the newest notification, 0 when there is none yet. Throws std::exception when the store cannot
// be read.
long long LastNotificationId();

// True when the request `requestId` has caused one that is still kept. Throws as above.
bool HasNotified(const std::string& requestId);

// At most `limit` notifications with ids above `id`, oldest first. Old ones are dropped in time, so the
// first may not be the one that follows `id`. Throws std::exception when the store cannot be read.
std::vector<Notification> NotificationsAfter(long long id, int limit);

}  // namespace camvora
