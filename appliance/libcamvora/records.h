// The growing tables of the database, in which the newest records are kept: operation log, notifications and
// programs.
#pragma once

#include "libcamvora/notifications.h"
#include "libcamvora/operationlog.h"
#include "libcamvora/program.h"
#include "libcamvora/programlog.h"

#include <SQLiteCpp/Database.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace camvora {

inline constexpr int kNotificationsKept = 1000;
inline constexpr int kLogEntriesKept = 10000;
inline constexpr int kProgramRunsKept = 10000;
inline constexpr std::size_t kRecordTextLimitBytes = 1024;

// Each adds a record with the present time and this process's request (an operation also with its
// origin), and drops the ones that are too old.
// Texts are cut to their limit.
// Called inside a transaction. Throws std::exception when that fails.
void AddLogEntry(SQLite::Database& database, int event, long long number,
                 const std::array<std::string, 3>& texts);
void AddNotification(SQLite::Database& database, int type, const std::array<std::string, 3>& texts);
void AddProgramRun(SQLite::Database& database, const std::string& path,
                   const std::vector<std::string>& arguments, const ProgramEnd& end);

// What the functions of the same names give, from this database.
long long LastLogEntryId(SQLite::Database& database);
std::vector<LogEntry> LogEntriesAfter(SQLite::Database& database, long long id, const std::string& requestId,
                                      int limit);
long long LastNotificationId(SQLite::Database& database);
bool HasNotified(SQLite::Database& database, const std::string& requestId);
std::vector<Notification> NotificationsAfter(SQLite::Database& database, long long id, int limit);
std::vector<ProgramRun> ProgramRunsOf(SQLite::Database& database, const std::string& requestId, int limit);

}  // namespace camvora
