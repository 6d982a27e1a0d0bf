// The manual page.
#pragma once

#include <string>

namespace client {

struct CommandDescription;

// The page of the program in the language of man pages (roff).
std::string ManualPage(const CommandDescription& program);

}  // namespace client
