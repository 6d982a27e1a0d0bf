// The end of a download, by others than its own process.
#pragma once

#include "libcamvora/store.h"
#include "libcamvora/updatesettings.h"

namespace camvora {

// Kills the process that downloads for the service, if there is one, and waits until nothing of the download
// is left: no process, no file, no record. A download that is ready stays. Throws std::exception when that
// was not to be had within five seconds.
void CancelDownload(Store& store, const UpdateSettings& settings);

// Removes the record of the last download and its files. Where a download runs they are its own, and stay.
// Throws std::exception as CancelDownload does.
void CleanDownload(Store& store, const UpdateSettings& settings);

}  // namespace camvora
