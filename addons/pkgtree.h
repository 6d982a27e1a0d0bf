// What an unpacked package may not hold. A package is hostile until the contrary is shown: nothing here
// follows a link. Called in the request process after the unpacking program has ended, with the package lock
// held, so nobody else changes the folder meanwhile.
#pragma once

#include <string>

// Removes from the folder `workDir`, at any depth, all that is neither a plain file nor a folder, and clears
// the set-id bits of the rest. `workDir` has no final "/"; a link in its place is removed. Returns false when
// the folder could not be gone through to its end; true also when there is none.
bool RemoveSpecialFiles(const std::string& workDir);

// True when what the module reads and runs from the unpacked package is of its proper kind or absent: the
// INFO in `workDir`, and in the folder `tree` there the folder itself, its conf, and its scripts with their
// folder. Links elsewhere in the tree are the add-on's own affair.
bool IsTreeSound(const std::string& workDir, const std::string& tree);
