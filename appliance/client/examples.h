// The examples that the help shows.
#pragma once

#include <string>

namespace client {

// The lines of the program's own help.
std::string ProgramExamples();

// The lines of the help with examples of that command and of those below it, as "pkg" or "pkg build"; empty
// where there are none.
std::string ExamplesOf(const std::string& command);

}  // namespace client
