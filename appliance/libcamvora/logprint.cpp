#include "libcamvora/logprint.h"

#include "libcamvora/logfile.h"
#include "libcamvora/logline.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace camvora {

namespace {

constexpr std::size_t kTextLimitBytes = 4096;  // with the final NUL

void DropFinalNewline(char* text) {
    const std::size_t length = std::strlen(text);
    if (length > 0 && text[length - 1] == '\n') {
        text[length - 1] = '\0';
    }
}

}  // namespace

void PrintToLog(const char* path, const char* source, int line, const char* function, const char* format,
                va_list arguments) {
    const int callersErrno = errno;
    std::array<char, kTextLimitBytes> text{};
    (void)std::vsnprintf(text.data(), text.size(), format, arguments);  // first, while errno is the caller's
    DropFinalNewline(text.data());
    LogFile(path).Append(FormatLogLine({source, line, function, text.data()}));
    errno = callersErrno;
}

}  // namespace camvora
