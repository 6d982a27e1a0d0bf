// The transfer of a package file from the feed's server.
#pragma once

#include "libcamvora/arrivingfile.h"
#include "libcamvora/feedindex.h"
#include "libcamvora/updatesettings.h"

#include <functional>

namespace camvora {

// Fetches what `file` lacks of the release's package, until it has the release's size and hash.
// A broken or slow connection and a failure of the server are tried again after each of the pauses; an answer
// that no repetition would change is not. What has arrived stays in `file` for a later time, but is removed
// where it is of no use, and on a full disk.
//   onProgress  told the size so far whenever some of it has arrived
// Throws UpdateFailure when it was not to be had. Blocks, and a thread more runs meanwhile.
void FetchPackage(const UpdateSettings& settings, const Release& release, ArrivingFile& file,
                  const std::function<void(long long)>& onProgress);

}  // namespace camvora
