// When the lines of the schedule were last followed.
#pragma once

#include <ctime>
#include <map>
#include <string>

namespace camvora {

// By the name of the line. Throws std::exception when the store cannot be read.
std::map<std::string, std::time_t> LastTimes();

// Puts these in place of all that were kept. Returns false, with a line in the diagnostic log, when they
// cannot be stored.
bool KeepLastTimes(const std::map<std::string, std::time_t>& times);

}  // namespace camvora
