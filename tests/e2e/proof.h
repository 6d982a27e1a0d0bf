// The proofs of paired servers, made without the library under test.
#pragma once

#include <string>

namespace e2e {

// The proof with that secret for that time, in decimal seconds since 1970.
std::string Proof(const std::string& secret, const std::string& timestamp);

}  // namespace e2e
