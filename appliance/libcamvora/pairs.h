// The paired servers: what is kept of them.
#pragma once

#include "libcamvora/state.h"

#include <optional>
#include <string>
#include <vector>

namespace camvora {

// True for what may be the name of a paired server: letters, digits, ".", "_" and "-", a letter or digit
// first, at most 64.
bool IsPairName(const std::string& name);

// True for an address of the form "http://HOST:PORT".
bool IsPairAddress(const std::string& address);

// True for what may be a secret.
bool IsPairSecret(const std::string& secret);

// A new secret: 256 random bits as 64 hexadecimal digits.
std::string NewPairSecret();

// All of them, by name.
std::vector<Pair> Pairs();

// The one of that role with that name, or with any where `name` is empty; nothing when there is none.
std::optional<Pair> FindPair(const std::string& role, const std::string& name = "");

// Keeps `pair`, which replaces the one of its name and role. A CMS host replaces any other; with a recording
// server this server becomes a CMS host. False, with a line in the diagnostic log, when it cannot be kept.
bool KeepPair(const Pair& pair);

// Forgets the pairs of that name, whatever their roles. False, with a line in the diagnostic log, when that
// fails. That this server is a CMS host stays.
bool ForgetPairs(const std::string& name);

}  // namespace camvora
