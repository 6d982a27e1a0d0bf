// The proof by which paired servers admit each other's requests: an HMAC-SHA256 over the time at which it was
// made, keyed with the secret of the pair and the direction. Nothing of it is ever logged.
#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace camvora {

// The proof as lower-case hex text. `timestamp` is the time in decimal Unix seconds.
std::string PairProof(const std::string& secret, const std::string& timestamp);

// True when `proof` was made with one of the secrets, at a `timestamp` at most a minute away from `now`.
// An empty secret never counts. Which secret it was, and how much of a wrong proof is right, takes the same
// time.
bool IsProofOfPair(const std::vector<std::string>& secrets, const std::string& proof,
                   const std::string& timestamp, std::time_t now);

}  // namespace camvora
