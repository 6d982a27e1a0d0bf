// What a package leaves behind when it is unpacked, found out without tar.
#pragma once

#include "support/listing.h"

#include <string>

// The files and folders of the outer archive, without those in the place of the folder `tree`, and all of the
// inner one in `folder` beside them ("" for among them); not "package.tgz" itself. Throws std::runtime_error
// when one of the archives cannot be read.
Listing ListingOfPackage(const std::string& package, const std::string& tree, const std::string& folder);
