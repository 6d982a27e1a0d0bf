// Formatting into the diagnostic log.
#pragma once

#include <cstdarg>

namespace camvora {

// Formats as vprintf does, drops the final "\n", cuts the text at 4 KiB and appends it to the log file at
// `path` as one line. "%m" stands for errno at the time of the call; errno is the same at the return.
void PrintToLog(const char* path, const char* source, int line, const char* function, const char* format,
                va_list arguments) __attribute__((format(printf, 5, 0)));

}  // namespace camvora
