// What the terminal at an output can show.
#pragma once

#include <cstddef>

namespace client {

enum class Colour { kNone, kGreen, kYellow, kRed };

struct Terminal {
    std::size_t columns = 0;  // 0: no limit, as for a file or a pipe
    bool hasColour = false;
    bool canRewrite = false;  // a line that it shows
};

// What is at `descriptor`. Where the environment has "dumb" or nothing as TERM, a terminal has no colour and
// rewrites nothing; NO_COLOR forbids the colour alone.
Terminal TerminalAt(int descriptor);

// The sequence that begins text of that colour; for kNone the one that ends it.
const char* SequenceFor(Colour colour);

}  // namespace client
