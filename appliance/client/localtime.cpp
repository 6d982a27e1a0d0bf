#include "client/localtime.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>

namespace client {
namespace {

constexpr char kForm[] = "%Y-%m-%dT%H:%M:%S";

struct UtcTime {
    time_t seconds;
    std::string fraction;  // as in ".123"; empty for none
};

std::optional<UtcTime> Parse(const std::string& utc) {
    tm parts{};
    const char* rest = strptime(utc.c_str(), kForm, &parts);
    if (rest == nullptr) {
        return std::nullopt;
    }
    const std::string fraction = rest;
    return UtcTime{timegm(&parts), fraction.substr(0, fraction.find('Z'))};
}

std::string Formatted(const tm& parts, const char* format) {
    std::array<char, 64> text{};
    (void)std::strftime(text.data(), text.size(), format, &parts);
    return text.data();
}

int Milliseconds(const std::string& fraction) {
    constexpr int kThousand = 1000;
    return static_cast<int>(std::lround(std::strtod(("0" + fraction).c_str(), nullptr) * kThousand));
}

}  // namespace

std::string LocalTime(const std::string& utc, const char* format, bool withFraction) {
    const std::optional<UtcTime> time = Parse(utc);
    if (!time) {
        return utc;
    }
    tm parts{};
    localtime_r(&time->seconds, &parts);
    return Formatted(parts, format) + (withFraction ? time->fraction : "");
}

std::string TimeAfter(const std::string& utc, std::chrono::milliseconds span) {
    constexpr int kThousand = 1000;
    const std::optional<UtcTime> time = Parse(utc);
    if (!time) {
        return "";
    }
    const auto total = Milliseconds(time->fraction) + span.count();
    const time_t seconds = time->seconds + static_cast<time_t>(total / kThousand);
    tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 8> fraction{};
    std::snprintf(fraction.data(), fraction.size(), ".%03dZ", static_cast<int>(total % kThousand));
    return Formatted(parts, kForm) + fraction.data();
}

}  // namespace client
