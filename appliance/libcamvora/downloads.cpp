#include "libcamvora/downloads.h"

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/VariadicBind.h>

namespace camvora {

std::optional<Download> FindDownload(SQLite::Database& database, ADDON_SERVICE service) {
    SQLite::Statement statement(database,
                                "SELECT status, version, file, date FROM downloads WHERE service = ?");
    statement.bind(1, static_cast<int>(service));
    if (!statement.executeStep()) {
        return std::nullopt;
    }
    return Download{static_cast<APP_DOWNLOAD_STATUS>(statement.getColumn(0).getInt()),
                    {statement.getColumn(1).getString(), statement.getColumn(2).getString(),
                     statement.getColumn(3).getString()}};
}

void KeepDownload(SQLite::Database& database, ADDON_SERVICE service, const Download& download) {
    SQLite::Statement statement(database,
                                "INSERT OR REPLACE INTO downloads(service, status, version, file, date)"
                                " VALUES(?, ?, ?, ?, ?)");
    SQLite::bind(statement, static_cast<int>(service), static_cast<int>(download.status),
                 download.info.version, download.info.filePath, download.info.date);
    statement.exec();
}

void ForgetDownload(SQLite::Database& database, ADDON_SERVICE service) {
    SQLite::Statement statement(database, "DELETE FROM downloads WHERE service = ?");
    statement.bind(1, static_cast<int>(service));
    statement.exec();
}

}  // namespace camvora
