#include "libcamvora/hextext.h"

namespace camvora {

std::string HexText(const unsigned char* bytes, std::size_t sizeBytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < sizeBytes; ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 0xf];
    }
    return text;
}

}  // namespace camvora
