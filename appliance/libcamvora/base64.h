// Base64 with the standard alphabet, padded, without line breaks.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace camvora {

// The bytes as text.
std::string EncodeBase64(const unsigned char* bytes, std::size_t sizeBytes);

// The number of bytes that `text` stands for, judged by its length and padding; nothing when no base64 text
// is of that length.
std::optional<std::size_t> DecodedSize(const std::string& text);

// Decodes `text` into `bytes`, which has room for the decoded size and is filled no further. Returns false
// when `text` holds anything else than base64; what is in `bytes` then does not count.
bool DecodeBase64(const std::string& text, unsigned char* bytes);

}  // namespace camvora
