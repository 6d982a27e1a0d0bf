// Reading small files that others may have put there.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace camvora {

// The content of the file at `path`; nothing when it is no plain file, cannot be read or is larger than
// `limitBytes`. Follows no link and never blocks, whatever lies there.
std::optional<std::string> ReadPlainFile(const char* path, std::size_t limitBytes);

}  // namespace camvora
