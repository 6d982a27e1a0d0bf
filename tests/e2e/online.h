// Online updates as a caller of the API drives them.
#pragma once

#include "e2e/feed.h"
#include "e2e/httpcalls.h"

#include <string>
#include <vector>

namespace e2e {

// What "CheckUpdateInfo" and "DownloadProgress" say of the add-on.
int UpdateStateOf(const Appliance& appliance, int service);
int DownloadStateOf(const Appliance& appliance, int service);

// Orders the download and waits for its end. Returns the state in which it then is.
int Download(const Appliance& appliance, int service);

// The process that downloads; -1 where there is none.
pid_t Downloader(const Appliance& appliance);

// The downloaded package; empty where there is none.
std::string DownloadedPackage(const Appliance& appliance);

// Kills downloads of the Local Display from `feed` at random moments, `count` times, and finishes each then,
// with the same process or another one. Returns what is wrong, a line for each fault.
std::vector<std::string> KillDownloads(const Appliance& appliance, FaultyFeed& feed,
                                       const std::string& package, unsigned seed, unsigned count);

// Cancels downloads at random moments around their ends: each is whole or gone afterwards.
std::vector<std::string> CancelDownloads(const Appliance& appliance, const std::string& package,
                                         unsigned seed, unsigned count);

}  // namespace e2e
