// Online downloads that have come to their end.
#pragma once

#include "e2e/appliance.h"

#include <string>

namespace e2e {

// Lays the package file `package` where a download of the service would, and records it as ready.
void PutDownload(const Appliance& appliance, int service, const std::string& package);

}  // namespace e2e
