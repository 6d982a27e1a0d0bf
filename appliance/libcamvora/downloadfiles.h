// The files of a service's downloads. All are in one folder:
//
//   SERVICE-SHA256.partial  what has arrived of the file with that hash
//   SERVICE-VERSION.spk     a whole package
#pragma once

#include "libcamvora/feedindex.h"
#include "libcamvora/updatesettings.h"

#include <string>

namespace camvora {

std::string PartialFile(const UpdateSettings& settings, const Release& release);
std::string PackageFile(const UpdateSettings& settings, const Release& release);

// Removes all files of the service but the one at `kept`. Returns false when one could not be removed.
bool RemoveDownloadFiles(const UpdateSettings& settings, const std::string& kept);

// Gives the whole file `partial` its name `package`, so that it is there after a power cut, too. Returns
// false when that fails; both may be there then.
bool MovePackage(const std::string& partial, const std::string& package);

}  // namespace camvora
