// Trees on the disk. Nothing here follows a link.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

// True when nothing of that name is there, not even a link to nothing.
bool IsAbsent(const std::string& path);

// True when something is there. Neither is true of what the disk does not tell.
bool IsPresent(const std::string& path);

// True for a folder, or a plain file, itself.
bool IsFolder(const std::string& path);
bool IsFile(const std::string& path);

// Writes out the names in the folder that `path` lies in. Returns false on failure.
bool SyncParent(const std::string& path);

// Writes out all that the system still holds, and waits for that: a tree has too many files to order, and
// wait for, the disk's own cache once for each.
void SyncAll();

// What a folder is, whatever its name.
struct FolderIdentity {
    dev_t device;
    ino_t number;
};

// Nothing where there is no folder.
std::optional<FolderIdentity> IdentityOf(const std::string& path);
bool operator==(const FolderIdentity& one, const FolderIdentity& other);

// How many files, links and folders are in the folder, at any depth; 0 when it is absent. `path` itself is no
// link.
long CountEntries(const std::string& path);
