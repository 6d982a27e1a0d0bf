// The check for a new release of an add-on.
#pragma once

#include "libcamvora/feedindex.h"
#include "libcamvora/store.h"
#include "libcamvora/updatesettings.h"

#include <optional>

namespace camvora {

// Asks the feed for its index, which is not transferred again while it is the one that `store` has kept, and
// keeps it there with what it means for the service. Returns the newest release that is newer than the
// installed add-on and fits the main package; nothing when there is none.
// Throws std::exception, with nothing kept, when the question cannot be answered within `checkLimit`, or when
// the index is not to be trusted: also when an index with a greater serial was seen, signed by the same key.
// Blocks, and a thread more runs meanwhile.
std::optional<Release> CheckRelease(Store& store, const UpdateSettings& settings);

}  // namespace camvora
