#include "libcamvora/records.h"

#include "libcamvora/requestid.h"
#include "libcamvora/requestorigin.h"
#include "libcamvora/utctime.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

#include <algorithm>
#include <cstdint>

namespace camvora {

namespace {

void Drop(SQLite::Database& database, const char* query, int kept) {
    SQLite::Statement statement(database, query);
    statement.bind(1, kept);
    statement.exec();
}

// A request may bring megabytes of text, and thousands of records are kept. Cut between two characters.
std::string Shortened(const std::string& text) {
    std::size_t length = std::min(text.size(), kRecordTextLimitBytes);
    while (length > 0 && length < text.size() &&
           (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        --length;
    }
    return text.substr(0, length);
}

Notification NotificationOf(const SQLite::Statement& row) {
    return {row.getColumn(0).getInt64(),
            row.getColumn(1).getString(),
            row.getColumn(2).getString(),
            row.getColumn(3).getInt(),
            {row.getColumn(4).getString(), row.getColumn(5).getString(), row.getColumn(6).getString()}};
}

LogEntry LogEntryOf(const SQLite::Statement& row) {
    return {row.getColumn(0).getInt64(),
            row.getColumn(1).getString(),
            row.getColumn(2).getString(),
            row.getColumn(3).getInt(),
            row.getColumn(4).getInt64(),
            {row.getColumn(5).getString(), row.getColumn(6).getString(), row.getColumn(7).getString()},
            row.getColumn(8).getString()};
}

// What is not bound is null, as are the arguments that a program does not have.
constexpr int kFirstArgument = 4;

ProgramRun ProgramRunOf(const SQLite::Statement& row) {
    ProgramRun run{row.getColumn(0).getInt64(),
                   row.getColumn(1).getString(),
                   row.getColumn(2).getString(),
                   row.getColumn(3).getString(),
                   {},
                   row.getColumn(8).getInt(),
                   row.getColumn(9).getInt64(),
                   row.getColumn(10).getInt64()};
    for (int i = kFirstArgument; i < kFirstArgument + kArgumentsLimit && !row.getColumn(i).isNull(); ++i) {
        run.arguments.push_back(row.getColumn(i).getString());
    }
    return run;
}

}  // namespace

void AddLogEntry(SQLite::Database& database, int event, long long number,
                 const std::array<std::string, 3>& texts) {
    SQLite::Statement statement(database,
                                "INSERT INTO operation_log(time, request, event, number, text1, text2, text3,"
                                " who) VALUES(?, ?, ?, ?, ?, ?, ?, ?)");
    SQLite::bind(statement, UtcTimeText(), RequestId(), event, std::int64_t{number}, Shortened(texts[0]),
                 Shortened(texts[1]), Shortened(texts[2]), RequestOrigin());
    statement.exec();
    Drop(database, "DELETE FROM operation_log WHERE id <= last_insert_rowid() - ?", kLogEntriesKept);
}

void AddNotification(SQLite::Database& database, int type, const std::array<std::string, 3>& texts) {
    SQLite::Statement statement(database,
                                "INSERT INTO notifications(time, request, type, text1, text2, text3)"
                                " VALUES(?, ?, ?, ?, ?, ?)");
    SQLite::bind(statement, UtcTimeText(), RequestId(), type, Shortened(texts[0]), Shortened(texts[1]),
                 Shortened(texts[2]));
    statement.exec();
    Drop(database, "DELETE FROM notifications WHERE id <= last_insert_rowid() - ?", kNotificationsKept);
}

void AddProgramRun(SQLite::Database& database, const std::string& path,
                   const std::vector<std::string>& arguments, const ProgramEnd& end) {
    SQLite::Statement statement(
        database,
        "INSERT INTO programs(time, request, path, argument1, argument2, argument3, argument4, exit_status,"
        " duration_ms, peak_memory_kib) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    SQLite::bind(statement, UtcTimeText(), RequestId(), path);
    int index = kFirstArgument;
    for (const std::string& argument : arguments) {
        statement.bind(index++, argument);
    }
    statement.bind(8, end.exitStatus);
    statement.bind(9, std::int64_t{end.duration.count()});
    statement.bind(10, std::int64_t{end.peakMemoryKiB});
    statement.exec();
    Drop(database, "DELETE FROM programs WHERE id <= last_insert_rowid() - ?", kProgramRunsKept);
}

long long LastLogEntryId(SQLite::Database& database) {
    return database.execAndGet("SELECT coalesce(max(id), 0) FROM operation_log").getInt64();
}

std::vector<LogEntry> LogEntriesAfter(SQLite::Database& database, long long id, const std::string& requestId,
                                      int limit) {
    SQLite::Statement statement(
        database,
        "SELECT id, time, request, event, number, text1, text2, text3, who FROM operation_log"
        " WHERE id > ?1 AND (?2 = '' OR request = ?2) ORDER BY id LIMIT ?3");
    SQLite::bind(statement, std::int64_t{id}, requestId, limit);
    std::vector<LogEntry> entries;
    while (statement.executeStep()) {
        entries.push_back(LogEntryOf(statement));
    }
    return entries;
}

long long LastNotificationId(SQLite::Database& database) {
    return database.execAndGet("SELECT coalesce(max(id), 0) FROM notifications").getInt64();
}

bool HasNotified(SQLite::Database& database, const std::string& requestId) {
    SQLite::Statement statement(database, "SELECT 1 FROM notifications WHERE request = ? LIMIT 1");
    statement.bind(1, requestId);
    return statement.executeStep();
}

std::vector<Notification> NotificationsAfter(SQLite::Database& database, long long id, int limit) {
    SQLite::Statement statement(database,
                                "SELECT id, time, request, type, text1, text2, text3 FROM notifications"
                                " WHERE id > ? ORDER BY id LIMIT ?");
    statement.bind(1, static_cast<std::int64_t>(id));
    statement.bind(2, limit);
    std::vector<Notification> notifications;
    while (statement.executeStep()) {
        notifications.push_back(NotificationOf(statement));
    }
    return notifications;
}

std::vector<ProgramRun> ProgramRunsOf(SQLite::Database& database, const std::string& requestId, int limit) {
    SQLite::Statement statement(database,
                                "SELECT * FROM (SELECT id, time, request, path, argument1, argument2,"
                                " argument3, argument4, exit_status, duration_ms, peak_memory_kib"
                                " FROM programs WHERE ?1 = '' OR request = ?1 ORDER BY id DESC LIMIT ?2)"
                                " ORDER BY id");
    SQLite::bind(statement, requestId, limit);
    std::vector<ProgramRun> runs;
    while (statement.executeStep()) {
        runs.push_back(ProgramRunOf(statement));
    }
    return runs;
}

}  // namespace camvora
