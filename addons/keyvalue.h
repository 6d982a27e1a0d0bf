// Values of key-value files as the module reads them.
#pragma once

#include <string>

// The most bytes of a value, its final NUL included.
inline constexpr int kValueSizeBytes = 256;

// Reads the value of `key` from the file at `path`, cut to `sizeBytes` (at most kValueSizeBytes) with its
// final NUL. Returns what the platform's reader returns: negative when file or key is missing, with `value`
// empty then.
int ReadKeyValue(const std::string& path, const char* key, std::string& value,
                 int sizeBytes = kValueSizeBytes);
