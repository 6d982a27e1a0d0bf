// The diagnostic log of the test program: kept in memory, in place of the appliance's.
#pragma once

#include <string>
#include <vector>

// The texts that this process has logged since the last call.
std::vector<std::string> TakeLoggedTexts();
