#include "libcamvora/utctime.h"

#include <array>
#include <cstdio>

namespace camvora {

std::string UtcTimeText() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return UtcTimeText(now);
}

std::string UtcTimeText(const timespec& time) {
    constexpr long kNsPerMs = 1000000;
    tm parts{};
    gmtime_r(&time.tv_sec, &parts);
    std::array<char, 32> seconds{};
    (void)std::strftime(seconds.data(), seconds.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::array<char, 48> text{};
    (void)std::snprintf(text.data(), text.size(), "%s.%03ldZ", seconds.data(), time.tv_nsec / kNsPerMs);
    return text.data();
}

}  // namespace camvora
