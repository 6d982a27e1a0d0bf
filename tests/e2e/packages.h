// Packages, made on the spot.
#pragma once

#include "e2e/appliance.h"

#include <json/value.h>

#include <cstddef>
#include <string>

namespace e2e {

inline constexpr int kDevicePackService = 1;
inline constexpr int kLocalDisplayService = 6;
inline constexpr std::size_t kMiB = std::size_t{1} << 20;

// Where the upload area lies in the package.
inline constexpr char kUploads[] = "target/@CVData/upload";

// Bytes in which a shifted, repeated or lost piece shows.
std::string Content(std::size_t sizeBytes, unsigned seed);

// A package of the service, not compressed, whose tree holds `blob`. It is taken by every appliance.
std::string MakePackage(int service, const std::string& blob);

// The file of a sample package that the build has made.
std::string SamplePath(const std::string& name);

// Uploads the package to the appliance. Returns the parameters of "GetPkgInfo" for it.
Json::Value Upload(const Appliance& appliance, const std::string& package,
                   int service = kLocalDisplayService);

// The files in the appliance's upload area.
std::size_t UploadCount(const Appliance& appliance);

}  // namespace e2e
