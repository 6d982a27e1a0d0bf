// The help: of the program, and of each command.
#pragma once

#include <string>

namespace client {

struct CommandDescription;

// Lines of at most 80 columns, with an empty line at the end.
std::string ProgramHelp(const CommandDescription& program);

//   path  the command's name with those above it, as in "pkg build"
std::string CommandHelp(const CommandDescription& command, const std::string& path);

}  // namespace client
