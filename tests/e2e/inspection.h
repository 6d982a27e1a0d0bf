// Packages before a real appliance: they are put into its upload area and inspected with "GetPkgInfo".
#pragma once

#include "e2e/appliance.h"
#include "support/listing.h"

#include <string>

namespace e2e {

struct AddOn {
    int service;
    const char* name;    // of its tree, and of its work directory
    const char* folder;  // in the work directory, where the inner archive is unpacked
    const char* info;    // a good INFO
};

inline constexpr AddOn kDevicePack{1, "device_pack", "", "package=CamvoraDevicePack\narch=plat1\n"};
inline constexpr AddOn kLocalDisplay{6, "local_display", "local_display",
                                     "package=CamvoraLocalDisplay\narch=plat1\n"};

// Puts the package into the upload area and asks what it is.
Answer Inspect(const Appliance& appliance, HttpCalls& calls, const AddOn& addOn, const std::string& package);

// Says what is wrong with an answer to it; empty when nothing is. A package that is taken lies in the work
// directory as `meant`, which may differ from what was sent, would be unpacked; one that is not taken is
// answered 400 with an error-info object.
std::string FaultOf(const Appliance& appliance, const Answer& answer, const AddOn& addOn,
                    const std::string& meant);

// All of the appliance that no package may change: what is not a work directory, nor changes by itself.
Listing ListingOutside(const Appliance& appliance);

// The same in each run, but another one in each repetition of a shuffled run, which tells how to have it
// again.
inline unsigned Seed() {
    return 1 + static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
}

std::filesystem::path WorkDirectory(const Appliance& appliance, const AddOn& addOn);

}  // namespace e2e
