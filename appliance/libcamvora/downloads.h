// What is known of the last download of each service.
#pragma once

#include "platform/releases.h"

#include <SQLiteCpp/Database.h>

#include <optional>

namespace camvora {

inline constexpr APP_DOWNLOAD_STATUS kDownloadReady{2};

struct Download {
    APP_DOWNLOAD_STATUS status;
    APP_DOWNLOAD_INFO info;
};

// The record of the service's last download; nothing when there is none.
// These throw std::exception when the database cannot be read or written.
std::optional<Download> FindDownload(SQLite::Database& database, ADDON_SERVICE service);

// Puts a record in place of the service's last one. Called inside a transaction, as is the next.
void KeepDownload(SQLite::Database& database, ADDON_SERVICE service, const Download& download);

void ForgetDownload(SQLite::Database& database, ADDON_SERVICE service);

}  // namespace camvora
