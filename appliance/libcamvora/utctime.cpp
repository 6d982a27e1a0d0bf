#include "libcamvora/utctime.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace camvora {

std::string UtcTimeText() {
    constexpr long kNsPerMs = 1000000;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    std::array<char, 32> seconds{};
    (void)std::strftime(seconds.data(), seconds.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::array<char, 48> text{};
    (void)std::snprintf(text.data(), text.size(), "%s.%03ldZ", seconds.data(), now.tv_nsec / kNsPerMs);
    return text.data();
}

}  // namespace camvora
