// Reading files that others may have put there.
#pragma once

#include "libcamvora/descriptor.h"

#include <cstddef>
#include <optional>
#include <string>

namespace camvora {

// Opens the file at `path` for reading and tells its size; not open when it is no plain file or cannot be
// read. Follows no link and never blocks, whatever lies there.
Descriptor OpenPlainFile(const char* path, std::size_t& sizeBytes);

// Reads `sizeBytes` bytes from the beginning of the file, or, where it has been cut meanwhile, as many as
// there are, and tells how many. Returns false when it cannot be read.
bool ReadUpTo(int file, void* bytes, std::size_t& sizeBytes);

// The content of the file at `path`; nothing when it cannot be opened in this way or is larger than
// `limitBytes`.
std::optional<std::string> ReadPlainFile(const char* path, std::size_t limitBytes);

}  // namespace camvora
