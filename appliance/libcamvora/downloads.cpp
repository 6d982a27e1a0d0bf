#include "libcamvora/downloads.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

#include <cstdint>

namespace camvora {

namespace {

Download DownloadOf(const SQLite::Statement& row) {
    return {static_cast<APP_DOWNLOAD_STATUS>(row.getColumn(1).getInt()),
            {row.getColumn(2).getString(), row.getColumn(3).getString(), row.getColumn(4).getString()},
            row.getColumn(5).getInt64(),
            row.getColumn(6).getInt64(),
            row.getColumn(7).getString()};
}

}  // namespace

std::optional<Download> FindDownload(SQLite::Database& database, ADDON_SERVICE service) {
    const std::map<int, Download> all = AllDownloads(database);
    const auto download = all.find(service);
    return download == all.end() ? std::nullopt : std::optional(download->second);
}

std::map<int, Download> AllDownloads(SQLite::Database& database) {
    SQLite::Statement row(database,
                          "SELECT service, status, version, file, date, bytes, size, problem FROM downloads");
    std::map<int, Download> downloads;
    while (row.executeStep()) {
        downloads[row.getColumn(0).getInt()] = DownloadOf(row);
    }
    return downloads;
}

void KeepDownload(SQLite::Database& database, ADDON_SERVICE service, const Download& download) {
    SQLite::Statement statement(
        database,
        "INSERT OR REPLACE INTO downloads(service, status, version, file, date, bytes, size, problem)"
        " VALUES(?, ?, ?, ?, ?, ?, ?, ?)");
    SQLite::bind(statement, static_cast<int>(service), static_cast<int>(download.status),
                 download.info.version, download.info.filePath, download.info.date,
                 std::int64_t{download.bytes}, std::int64_t{download.sizeBytes}, download.problem);
    statement.exec();
}

void KeepProgress(SQLite::Database& database, ADDON_SERVICE service, long long bytes) {
    SQLite::Statement statement(database, "UPDATE downloads SET bytes = ? WHERE service = ?");
    SQLite::bind(statement, std::int64_t{bytes}, static_cast<int>(service));
    statement.exec();
}

void ForgetDownload(SQLite::Database& database, ADDON_SERVICE service) {
    SQLite::Statement statement(database, "DELETE FROM downloads WHERE service = ?");
    statement.bind(1, static_cast<int>(service));
    statement.exec();
}

}  // namespace camvora
