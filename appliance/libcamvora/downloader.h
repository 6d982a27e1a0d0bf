// The download of an add-on's new release.
//
// The record in `store` says how it stands. While it says that a download runs, a process holds the lock
// file; where none does, that process was killed. It says ready only of a file that is whole, verified and on
// the disk.
#pragma once

#include "libcamvora/store.h"
#include "libcamvora/updatesettings.h"

namespace camvora {

// Checks for the newest release and downloads it; at once over when it is there already. What an earlier
// attempt has left of the same file is used, everything else of the service is removed. Throws
// std::exception: with the record untouched when another process downloads or cleans up, or when a ready
// download is there and the check failed; otherwise the record says why. Called in a process that does
// nothing else and forks nothing meanwhile: CancelDownload kills it.
void DownloadRelease(Store& store, const UpdateSettings& settings);

}  // namespace camvora
