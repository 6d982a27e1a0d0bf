// Values of key-value files in other forms than PLIBCFileGetKeyValue gives them.
#pragma once

#include <string>

namespace camvora {

// The value of `key` in the file at `path`; `defaultValue` when it cannot be read or is empty.
std::string TextOfKey(const char* path, const char* key, const std::string& defaultValue);

// The number above 0 that the value of `key` is; `defaultValue` when it is none or cannot be read.
long long NumberOfKey(const char* path, const char* key, long long defaultValue);

}  // namespace camvora
