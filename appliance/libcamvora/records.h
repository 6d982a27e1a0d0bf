// The two growing tables of the database, in which the newest records are kept: operation log and
// notifications.
#pragma once

#include "libcamvora/notifications.h"

#include <SQLiteCpp/Database.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace camvora {

inline constexpr int kNotificationsKept = 1000;
inline constexpr int kOperationsKept = 10000;

// An entry of the operation log without time and request, which are those of its writing.
struct Operation {
    int event;
    std::int64_t number;
    std::array<std::string, 3> texts;
};

// Each adds a record with the present time and this process's request, and drops the ones that are too old.
// Called inside a transaction. Throws std::exception when that fails.
void AddOperation(SQLite::Database& database, const Operation& operation);
void AddNotification(SQLite::Database& database, int type, const std::array<std::string, 3>& texts);

// What LastNotificationId and NotificationsAfter give, from this database.
long long LastNotificationId(SQLite::Database& database);
std::vector<Notification> NotificationsAfter(SQLite::Database& database, long long id, int limit);

}  // namespace camvora
