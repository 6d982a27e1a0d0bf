// Bytes as text.
#pragma once

#include <cstddef>
#include <string>

namespace camvora {

// The bytes as lower-case hexadecimal digits.
std::string HexText(const unsigned char* bytes, std::size_t sizeBytes);

}  // namespace camvora
