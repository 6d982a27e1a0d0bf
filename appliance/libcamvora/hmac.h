// Proofs that only the owner of a key can make.
#pragma once

#include <string>

namespace camvora {

// The HMAC-SHA256 of `text` under `key`, as 64 lower-case hex digits. Both may hold any bytes.
std::string HmacSha256(const std::string& key, const std::string& text);

}  // namespace camvora
