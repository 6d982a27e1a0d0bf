#include "libcamvora/logline.h"

#include "libcamvora/requestid.h"
#include "libcamvora/utctime.h"

#include <json/writer.h>
#include <unistd.h>

namespace camvora {

namespace {

// JsonCpp escapes all but printable ASCII and DEL, and replaces what is no UTF-8.
std::string Quoted(const char* text) {
    std::string quoted = Json::valueToQuotedString(text == nullptr ? "" : text);
    constexpr char kDelete = '\x7f';
    for (std::size_t at = quoted.find(kDelete); at != std::string::npos; at = quoted.find(kDelete, at)) {
        quoted.replace(at, 1, "\\u007f");
    }
    return quoted;
}

}  // namespace

std::string FormatLogLine(const LogLine& entry) {
    return kLogLineBegin + UtcTimeText() + "\",\"pid\":" + std::to_string(getpid()) +
           ",\"request\":" + Quoted(RequestId().c_str()) + ",\"source\":" + Quoted(entry.source) +
           ",\"line\":" + std::to_string(entry.line) + ",\"function\":" + Quoted(entry.function) +
           ",\"text\":" + Quoted(entry.text) + "}\n";
}

}  // namespace camvora
