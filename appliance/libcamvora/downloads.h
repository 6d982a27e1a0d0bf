// What is known of the last download of each service.
#pragma once

#include "platform/releases.h"

#include <SQLiteCpp/Database.h>

#include <map>
#include <optional>
#include <string>

namespace camvora {

inline constexpr APP_DOWNLOAD_STATUS kNoDownload{0};
inline constexpr APP_DOWNLOAD_STATUS kDownloadRuns{1};
inline constexpr APP_DOWNLOAD_STATUS kDownloadReady{2};
inline constexpr APP_DOWNLOAD_STATUS kDownloadFailed{4};

struct Download {
    APP_DOWNLOAD_STATUS status{};
    APP_DOWNLOAD_INFO info;
    long long bytes = 0;      // have arrived
    long long sizeBytes = 0;  // of the whole file; 0 while it is not known
    std::string problem{};    // why it failed, in words
};

// The record of the service's last download; nothing when there is none.
// These throw std::exception when the database cannot be read or written.
std::optional<Download> FindDownload(SQLite::Database& database, ADDON_SERVICE service);

// All records, by service.
std::map<int, Download> AllDownloads(SQLite::Database& database);

// Puts a record in place of the service's last one. Called inside a transaction, as are the next.
void KeepDownload(SQLite::Database& database, ADDON_SERVICE service, const Download& download);

void KeepProgress(SQLite::Database& database, ADDON_SERVICE service, long long bytes);

void ForgetDownload(SQLite::Database& database, ADDON_SERVICE service);

}  // namespace camvora
