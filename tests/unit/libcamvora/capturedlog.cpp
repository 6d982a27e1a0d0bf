#include "capturedlog.h"

#include "platform/log.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

static std::vector<std::string>& LoggedTexts() {
    static std::vector<std::string> texts;
    return texts;
}

// Stands before the library's own function of this name, also for the library's calls.
void CVPrintf(int /*level*/, const char* /*category*/, const char* /*device*/, const char* /*source*/,
              int /*line*/, const char* /*function*/, const char* format, ...) {
    std::array<char, 1024> text{};
    va_list arguments;
    va_start(arguments, format);
    (void)std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    LoggedTexts().emplace_back(text.data());
}

std::vector<std::string> TakeLoggedTexts() {
    return std::exchange(LoggedTexts(), {});
}
