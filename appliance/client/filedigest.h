// What tells files with the same content from all others.
#pragma once

#include <string>

namespace client {

class PlainFile;

// The SHA-256 of the whole file, in small hexadecimal digits. Throws Failure (kFailed).
std::string Sha256Of(const PlainFile& file);

}  // namespace client
