// How the download of a service stands: what its record says, and whether that still holds.
#pragma once

#include "libcamvora/downloads.h"
#include "libcamvora/store.h"
#include "libcamvora/updatesettings.h"

#include <optional>
#include <string>

namespace camvora {

// The record of the service's last download. Throws std::exception when the database cannot be read.
std::optional<Download> LastDownload(Store& store, ADDON_SERVICE service);

// True when the record says ready, its file is there (an update uses it up before the record goes), and it
// is newer than `installedVersion`, which may be empty.
bool IsReady(const Download& download, const std::string& installedVersion);

// The record of the service's download as it is to be shown: none where a ready file is gone or no
// longer newer than what is installed, failed where nobody holds the lock file any more. Throws
// std::exception when the database cannot be read. Not for a process that holds the lock, as that would free
// it.
Download StateOfDownload(Store& store, const UpdateSettings& settings);

}  // namespace camvora
