#include "host/requestids.h"

#include <sys/random.h>

#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>

namespace host {

std::string NewRequestId() {
    std::uint64_t number = 0;
    while (getrandom(&number, sizeof(number), 0) != sizeof(number)) {
    }
    std::array<char, 17> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%016" PRIx64, number);
    return digits.data();
}

}  // namespace host
