// Trees on the disk. Nothing here follows a link.
#pragma once

#include <string>

// True when nothing of that name is there, not even a link to nothing.
bool IsAbsent(const std::string& path);

// True for a folder itself.
bool IsFolder(const std::string& path);

// Writes out what the system still holds of the folder's list of names. Returns false on failure.
bool SyncFolder(const std::string& path);

// The same for all files and folders of the tree, the folder `path` itself included.
bool SyncTree(const std::string& path);

// How many files, links and folders the tree has, itself included; 0 when it is absent.
long CountEntries(const std::string& path);
