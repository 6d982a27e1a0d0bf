// The appliance's records of releases and of their downloads.
#pragma once

#include "client/services.h"

#include <json/value.h>

namespace client {

class Appliance;

// What the last check has found that is newer than what is installed: an object with "version", "date",
// "notes" and "size". Null for nothing, and on a paired server. Throws Failure as Appliance::Call does.
Json::Value ReleaseOf(const Appliance& host, const Service& service);

// The last download: an object with "version", "status", "bytes", "size" and "problem". Null when there is
// none, and on a paired server. Throws Failure as Appliance::Call does.
Json::Value DownloadOf(const Appliance& host, const Service& service);

}  // namespace client
