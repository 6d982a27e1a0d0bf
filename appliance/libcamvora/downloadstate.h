// How the download of a service stands: what its record says, and whether that still holds.
#pragma once

#include "libcamvora/downloads.h"
#include "libcamvora/store.h"

#include <optional>
#include <string>

namespace camvora {

// The record of the service's last download. Throws std::exception when the database cannot be read.
std::optional<Download> LastDownload(Store& store, ADDON_SERVICE service);

// True when the record says ready and its file is there: an update uses it up before the record goes.
bool IsReady(const Download& download);

// The record of the service's download as it is to be shown: none where a ready file is gone, failed where
// nobody holds the lock file any more. Throws std::exception when the database cannot be read.
// Not for a process that holds the lock, as that would free it.
Download StateOfDownload(Store& store, ADDON_SERVICE service, const std::string& lockFile);

}  // namespace camvora
