// The command line of camvoractl.
#pragma once

namespace client {

// Parses the command line, runs its command and reports a failure: for people on standard error, with
// --json as an object on standard output. Returns the exit status. Called once, by main.
int RunCommandLine(int argc, const char* const* argv);

}  // namespace client
