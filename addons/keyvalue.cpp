#include "addons/keyvalue.h"

#include "platform/plibc.h"

#include <array>
#include <cstddef>
#include <cstring>

int ReadKeyValue(const std::string& path, const char* key, std::string& value, int sizeBytes) {
    std::array<char, kValueSizeBytes> buffer{};
    const int length = PLIBCFileGetKeyValue(path.c_str(), key, buffer.data(), sizeBytes, 0);
    value.assign(buffer.data(), length < 0 ? 0 : strnlen(buffer.data(), buffer.size() - 1));
    return length;
}
