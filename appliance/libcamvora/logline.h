// One line of the diagnostic log.
#pragma once

#include <string>

namespace camvora {

// What the caller of the log knows. The texts end with a NUL, may hold any other bytes, and stay the
// caller's.
struct LogLine {
    const char* source;
    int line;
    const char* function;
    const char* text;
};

// What every line begins with, and what no text within a line can hold.
inline constexpr char kLogLineBegin[] = "{\"time\":\"";

// The entry, written now by this process for its request, as one JSON object on one line that ends in "\n".
// Pure ASCII: whatever the texts hold, there is no second line and no control character in it.
std::string FormatLogLine(const LogLine& entry);

}  // namespace camvora
