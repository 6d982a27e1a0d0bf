#include "client/plainwords.h"

#include "client/jsontext.h"

#include <iomanip>
#include <iterator>
#include <sstream>

namespace client {
namespace {

std::string BoolWord(const Json::Value& value, const char* whenTrue, const char* whenFalse) {
    if (!value.isBool()) {
        return LeafText(value);
    }
    return value.asBool() ? whenTrue : whenFalse;
}

}  // namespace

std::string YesNo(const Json::Value& value) {
    return BoolWord(value, "yes", "no");
}

std::string OnOff(const Json::Value& value) {
    return BoolWord(value, "on", "off");
}

std::string SizeWords(std::uint64_t sizeBytes) {
    constexpr const char* kUnits[] = {" bytes", " KiB", " MiB", " GiB"};
    constexpr double kStep = 1024;
    auto size = static_cast<double>(sizeBytes);
    std::size_t unit = 0;
    for (; size >= kStep && unit + 1 < std::size(kUnits); ++unit) {
        size /= kStep;
    }
    std::ostringstream words;
    words << std::fixed << std::setprecision(unit == 0 ? 0 : 1) << size << kUnits[unit];
    return words.str();
}

std::string DurationWords(std::chrono::milliseconds span) {
    constexpr int kTenths = 10;
    constexpr int kMinute = 60;
    constexpr int kSecond = 1000;
    const auto seconds = span.count() / kSecond;
    if (seconds == 0) {
        return std::to_string(span.count()) + " ms";
    }
    const auto tenths = span.count() * kTenths / kSecond;
    if (seconds < kTenths) {
        return std::to_string(seconds) + "." + std::to_string(tenths % kTenths) + " s";
    }
    return seconds < kMinute
               ? std::to_string(seconds) + " s"
               : std::to_string(seconds / kMinute) + " min " + std::to_string(seconds % kMinute) + " s";
}

std::string FirstLine(const std::string& text) {
    return text.substr(0, text.find_first_of("\r\n"));
}

}  // namespace client
