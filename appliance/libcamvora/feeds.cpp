#include "libcamvora/feeds.h"

#include "libcamvora/store.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

#include <cstdint>

namespace camvora {

namespace {

CheckedRelease NewestOf(const SQLite::Statement& row, int first) {
    return {row.getColumn(first).getString(), row.getColumn(first + 1).getString(),
            row.getColumn(first + 2).getString(), row.getColumn(first + 3).getInt64(),
            row.getColumn(first + 4).getString()};
}

}  // namespace

std::optional<Feed> FindFeed(SQLite::Database& database, ADDON_SERVICE service) {
    SQLite::Statement row(
        database,
        "SELECT url, key, serial, etag, modified, content, version, date, notes, size, checked"
        " FROM feeds WHERE service = ?");
    row.bind(1, static_cast<int>(service));
    if (!row.executeStep()) {
        return std::nullopt;
    }
    return Feed{row.getColumn(0).getString(),
                row.getColumn(1).getString(),
                row.getColumn(2).getInt64(),
                row.getColumn(3).getString(),
                row.getColumn(4).getString(),
                row.getColumn(5).getString(),
                NewestOf(row, 6)};
}

void KeepFeed(SQLite::Database& database, ADDON_SERVICE service, const Feed& feed) {
    SQLite::Statement statement(
        database,
        "INSERT OR REPLACE INTO feeds(service, url, key, serial, etag, modified, content,"
        " version, date, notes, size, checked) VALUES(?,?,?,?,?,?,?,?,?,?,?,?)");
    SQLite::bind(statement, static_cast<int>(service), feed.url, feed.keyId, std::int64_t{feed.serial},
                 feed.etag, feed.lastModified, feed.index, feed.newest.version, feed.newest.date,
                 feed.newest.notes, std::int64_t{feed.newest.sizeBytes}, feed.newest.checkedAt);
    statement.exec();
}

std::vector<CheckedService> CheckedServices(SQLite::Database& database) {
    SQLite::Statement row(database,
                          "SELECT service, version, date, notes, size, checked FROM feeds ORDER BY service");
    std::vector<CheckedService> services;
    while (row.executeStep()) {
        services.push_back({row.getColumn(0).getInt(), NewestOf(row, 1)});
    }
    return services;
}

std::vector<CheckedService> CheckedServices() {
    std::vector<CheckedService> services;
    TheStore().Query([&services](SQLite::Database& database) { services = CheckedServices(database); });
    return services;
}

}  // namespace camvora
