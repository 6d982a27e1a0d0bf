// A disk that is soon full.
#pragma once

#include <cstddef>
#include <string>

// Whether the machine allows what follows.
bool CanMountSmallDisk();

// Puts an empty file system of that size on `folder`, for the calling process and all that it forks. Called
// in a child with one thread. Returns false where the machine refuses it.
bool MountSmallDisk(const std::string& folder, std::size_t sizeBytes);

// Gives it another size, for whoever sees it.
bool ResizeSmallDisk(const std::string& folder, std::size_t sizeBytes);
