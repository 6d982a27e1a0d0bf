// What the terminal at an output can show.
#pragma once

#include <cstddef>

namespace client {

enum class Colour { kNone, kGreen, kYellow, kRed };

struct Terminal {
    std::size_t columns = 0;  // 0: no limit, as for a file or a pipe
    bool hasColour = false;
};

// What is at `descriptor`. There is no colour where the environment has NO_COLOR, or "dumb" or nothing as
// TERM.
Terminal TerminalAt(int descriptor);

// The sequence that begins text of that colour; for kNone the one that ends it.
const char* SequenceFor(Colour colour);

}  // namespace client
