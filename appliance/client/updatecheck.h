// How an add-on stands towards the releases of its feed.
#pragma once

#include "client/services.h"

#include <string>

namespace client {

class Session;

// As the appliance numbers them.
enum class UpdateState : int {
    kOthersCheck = 0,
    kNothingNewer = 1,
    kNewer = 2,
    kDownloaded = 3,
    kDownloading = 4,
    kDownloadFailed = 5,
    kUpdating = 6,
    kNotAnswered = 7,
};

// Has the appliance look, at its feed too where no download or update is under way. Throws Failure as
// Appliance::Call does.
UpdateState CheckForUpdate(Session& session, const Service& service);

// The same where a release is wanted: throws Failure also when it is not known whether there is one
// (kFailed), and when another check or an update is under way (kBusy).
UpdateState CheckForRelease(Session& session, const Service& service);

// True when a newer release is known, whatever has become of its download.
bool IsReleaseThere(UpdateState state);

// False when the appliance could not find out.
bool IsKnown(UpdateState state);

// For people.
std::string StateWords(UpdateState state);

// Prints, as the outcome, that there is nothing newer.
void PrintNothingNewer(const Session& session, const Service& service);

}  // namespace client
