#include "libcamvora/diagnosticlog.h"

#include "libcamvora/logfile.h"
#include "libcamvora/logprint.h"
#include "libcamvora/paths.h"
#include "platform/log.h"

namespace {

constexpr long long kFileLimitBytes = 16LL << 20;

}  // namespace

void CVPrintf(int /*level*/, const char* /*category*/, const char* /*device*/, const char* source, int line,
              const char* function, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    camvora::PrintToLog(camvora::kLogFile, source, line, function, format, arguments);
    va_end(arguments);
}

namespace camvora {

Json::Value LogLinesOfRequest(const std::string& requestId) {
    return LogFile(kLogFile).LinesOfRequest(requestId);
}

void RotateLogsIfLarge() {
    for (const char* file : {kLogFile, kProgramLogFile}) {
        LogFile(file).RotateIfLarger(kFileLimitBytes);
    }
}

}  // namespace camvora
