// Downloading a release, as seen from outside the appliance that does it.
#pragma once

#include "client/services.h"
#include "client/updatecheck.h"

#include <string>

namespace client {

class Session;

// Has the appliance download the newer release of an add-on, or joins a download that is under way, and shows
// how far it is. An interrupt cancels the download; a second one leaves it to the appliance.
//   state    of the add-on, one with a release
//   returns  the version that is downloaded, at once where that was the state
//   throws   Failure: kFailed with the appliance's reason, kInterrupted, kTimedOut, or as Appliance::Call
//   does
std::string DownloadRelease(Session& session, const Service& service, UpdateState state);

}  // namespace client
