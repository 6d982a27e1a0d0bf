// Asking the person at the terminal.
#pragma once

#include <string>

namespace client {

// True when there is somebody to ask: standard input and standard error are terminals.
bool CanAsk();

// Asks on standard error and waits for a line on standard input. True for "y" and "yes".
//   text      what it is about, printable lines; the last one without its end
//   question  one sentence; any bytes
bool IsAgreed(const std::string& text, const std::string& question);

}  // namespace client
