#include "platform/log.h"

#include "fake/journal.h"

#include <array>
#include <cstdarg>
#include <cstdio>

// The text is made first, while errno is still the caller's. The line number is left out: it would change
// with every edit of the source.
void CVPrintf(int level, const char* category, const char* device, const char* source, int /*line*/,
              const char* function, const char* format, ...) {
    std::array<char, 1024> text{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    fake::Record("CVPrintf", level, category, device, source, function, text.data());
}

void CVLog(CV_LOG_TYPE type, long long number, const std::string& text1, const std::string& text2,
           const std::string& text3) {
    fake::Record("CVLog", type, number, text1, text2, text3);
}
