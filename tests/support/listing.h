// What lies in a folder, in a form that can be compared.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

using Listing = std::map<std::string, std::string>;  // by path: what is there

// An entry of a listing: its type and permissions, and a hash of what a file holds or of where a link leads.
std::string DescribeEntry(mode_t mode, const std::string& content = "");

// All that is below the folder, but neither the paths `leftOut` nor what is below them. Follows no link.
Listing ListingOf(const std::filesystem::path& folder, const std::set<std::string>& leftOut = {});

// The paths that are not the same in both.
std::vector<std::string> ChangedPaths(const Listing& before, const Listing& after);
