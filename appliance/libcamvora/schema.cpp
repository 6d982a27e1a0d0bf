#include "libcamvora/schema.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>

namespace camvora {

namespace {

// Step N leads from version N to version N + 1. Steps are only ever added.
constexpr const char* kSteps[] = {
    "CREATE TABLE settings(key TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;"
    "CREATE TABLE options(number INTEGER PRIMARY KEY, value TEXT NOT NULL);"
    "CREATE TABLE services(service INTEGER PRIMARY KEY, status INTEGER NOT NULL);"
    "CREATE TABLE cameras(camera INTEGER PRIMARY KEY, owner INTEGER NOT NULL);"
    "CREATE TABLE pairs(name TEXT NOT NULL, role TEXT NOT NULL CHECK(role IN ('server', 'host')),"
    " secret_in TEXT NOT NULL, secret_out TEXT NOT NULL, PRIMARY KEY(name, role)) WITHOUT ROWID;"
    "CREATE TABLE operation_log(id INTEGER PRIMARY KEY AUTOINCREMENT, time TEXT NOT NULL,"
    " request TEXT NOT NULL, event INTEGER NOT NULL, number INTEGER NOT NULL,"
    " text1 TEXT NOT NULL, text2 TEXT NOT NULL, text3 TEXT NOT NULL);"
    "CREATE TABLE notifications(id INTEGER PRIMARY KEY AUTOINCREMENT, time TEXT NOT NULL,"
    " request TEXT NOT NULL, type INTEGER NOT NULL,"
    " text1 TEXT NOT NULL, text2 TEXT NOT NULL, text3 TEXT NOT NULL);",
    "CREATE TABLE programs(id INTEGER PRIMARY KEY AUTOINCREMENT, time TEXT NOT NULL, request TEXT NOT NULL,"
    " path TEXT NOT NULL, argument1 TEXT, argument2 TEXT, argument3 TEXT, argument4 TEXT,"
    " exit_status INTEGER NOT NULL, duration_ms INTEGER NOT NULL, peak_memory_kib INTEGER NOT NULL);",
    "ALTER TABLE pairs ADD COLUMN address TEXT NOT NULL DEFAULT '';",
    "CREATE TABLE downloads(service INTEGER PRIMARY KEY, status INTEGER NOT NULL,"
    " version TEXT NOT NULL, file TEXT NOT NULL,"
    " date TEXT NOT NULL);",
    "ALTER TABLE downloads ADD COLUMN bytes INTEGER NOT NULL DEFAULT 0;"
    "ALTER TABLE downloads ADD COLUMN size INTEGER NOT NULL DEFAULT 0;"
    "ALTER TABLE downloads ADD COLUMN problem TEXT NOT NULL DEFAULT '';",
    "CREATE TABLE feeds(service INTEGER PRIMARY KEY, url TEXT NOT NULL, key TEXT NOT NULL,"
    " serial INTEGER NOT NULL, etag TEXT NOT NULL, modified TEXT NOT NULL, content TEXT NOT NULL,"
    " version TEXT NOT NULL, date TEXT NOT NULL, notes TEXT NOT NULL, size INTEGER NOT NULL,"
    " checked TEXT NOT NULL);",
    "ALTER TABLE operation_log ADD COLUMN who TEXT NOT NULL DEFAULT '';"
    "CREATE TABLE schedule(line TEXT PRIMARY KEY,"
    " last INTEGER NOT NULL) WITHOUT ROWID;",
    "CREATE TABLE operations(id INTEGER PRIMARY KEY AUTOINCREMENT, request TEXT NOT NULL, who TEXT NOT NULL,"
    " method TEXT NOT NULL, service INTEGER NOT NULL, from_version TEXT NOT NULL, begin TEXT NOT NULL,"
    " duration_ms INTEGER NOT NULL DEFAULT 0, outcome TEXT NOT NULL DEFAULT 'running',"
    " to_version TEXT NOT NULL DEFAULT '', code INTEGER NOT NULL DEFAULT 0,"
    " problem TEXT NOT NULL DEFAULT '');"
    "CREATE INDEX running_operations ON operations(id) WHERE outcome = 'running';",
};

}  // namespace

int SchemaVersion(SQLite::Database& database) {
    return database.execAndGet("PRAGMA user_version").getInt();
}

int CurrentSchemaVersion() {
    return static_cast<int>(std::size(kSteps));
}

void UpdateSchema(SQLite::Database& database) {
    SQLite::Transaction update(database, SQLite::TransactionBehavior::IMMEDIATE);
    const int version = SchemaVersion(database);
    if (version < 0 || version > CurrentSchemaVersion()) {
        throw std::runtime_error("tables of unknown version " + std::to_string(version));
    }
    for (std::size_t step = static_cast<std::size_t>(version); step < std::size(kSteps); ++step) {
        database.exec(kSteps[step]);
    }
    database.exec("PRAGMA user_version = " + std::to_string(CurrentSchemaVersion()));
    update.commit();
}

}  // namespace camvora
