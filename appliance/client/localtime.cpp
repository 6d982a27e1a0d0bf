#include "client/localtime.h"

#include <array>
#include <ctime>

namespace client {

std::string LocalTime(const std::string& utc, const char* format) {
    tm parts{};
    if (strptime(utc.c_str(), "%Y-%m-%dT%H:%M:%S", &parts) == nullptr) {
        return utc;
    }
    const time_t time = timegm(&parts);
    localtime_r(&time, &parts);
    std::array<char, 64> text{};
    (void)std::strftime(text.data(), text.size(), format, &parts);
    return text.data();
}

}  // namespace client
