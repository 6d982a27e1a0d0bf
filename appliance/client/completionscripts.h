// The scripts that let shells complete what is typed.
#pragma once

#include <string>

namespace client {

// The script for that shell, "bash" or "zsh"; empty for any other.
std::string CompletionScript(const std::string& shell);

}  // namespace client
