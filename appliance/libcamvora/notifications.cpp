#include "libcamvora/notifications.h"

#include "libcamvora/installation.h"
#include "libcamvora/records.h"
#include "libcamvora/store.h"
#include "platform/notify.h"

void CVClientNotify::Notify(CLIENT_NOTIFY_TYPE type, const std::string& text1, const std::string& text2,
                            const std::string& text3) {
    const std::array<std::string, 3> texts = {text1, text2, text3};
    const auto installation = camvora::InstallationToldBy(type, texts);
    (void)camvora::TheStore().Write([&](SQLite::Database& database) {  // a failure is in the log
        camvora::AddNotification(database, type, texts);
        if (installation) {
            camvora::AddLogEntry(database, camvora::kAddOnEvent, 0, *installation);
        }
    });
}

namespace camvora {

long long LastNotificationId() {
    long long id = 0;
    TheStore().Query([&id](SQLite::Database& database) { id = LastNotificationId(database); });
    return id;
}

bool HasNotified(const std::string& requestId) {
    bool hasNotified = false;
    TheStore().Query([&](SQLite::Database& database) { hasNotified = HasNotified(database, requestId); });
    return hasNotified;
}

std::vector<Notification> NotificationsAfter(long long id, int limit) {
    std::vector<Notification> notifications;
    TheStore().Query(
        [&](SQLite::Database& database) { notifications = NotificationsAfter(database, id, limit); });
    return notifications;
}

}  // namespace camvora
