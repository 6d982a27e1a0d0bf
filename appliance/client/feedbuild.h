// Publishing the packages that lie in the folder of a feed.
#pragma once

#include "client/feedindex.h"

#include <string>
#include <vector>

namespace client {

class FeedKey;

// Makes an index for each add-on that has packages (*.spk) in `dir`, newest first, and an empty one for an
// add-on whose packages are all gone. The notes of a release are the text beside its package, NAME.notes. All
// packages are read before anything is written.
//   returns  the indexes as they were published
//   throws   Failure: kRefused when a package is damaged or breaks a rule, or two are of one version;
//   kNotFound
//            when there is nothing to publish; kFailed
std::vector<FeedIndex> BuildFeed(const std::string& dir, const FeedKey& key);

}  // namespace client
