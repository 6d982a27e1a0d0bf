// Online updates as a caller of the API drives them.
#pragma once

#include "e2e/appliance.h"

namespace e2e {

// What "CheckUpdateInfo" and "DownloadProgress" say of the add-on.
int UpdateStateOf(const Appliance& appliance, int service);
int DownloadStateOf(const Appliance& appliance, int service);

// Orders the download and waits for its end. Returns the state in which it then is.
int Download(const Appliance& appliance, int service);

}  // namespace e2e
