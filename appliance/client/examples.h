// The examples that the help shows.
#pragma once

#include <string>
#include <vector>

namespace client {

// Those of the program's own help: what is typed behind "camvoractl".
std::vector<std::string> ProgramExamples();

// Those of that command and of those below it, as "pkg" or "pkg build"; empty where there are none.
std::vector<std::string> ExamplesOf(const std::string& command);

}  // namespace client
