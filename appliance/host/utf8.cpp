#include "host/utf8.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace host {

namespace {

// Which second bytes may follow a range of first bytes, and how many bytes the character has. All further
// bytes are 80 to BF.
struct Form {
    unsigned char first, last;
    unsigned char secondFirst, secondLast;
    std::size_t size;
};

constexpr Form kForms[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool IsWithin(char byte, unsigned char first, unsigned char last) {
    const auto value = static_cast<unsigned char>(byte);
    return first <= value && value <= last;
}

// The size of the character at `text`, 0 when there is none.
std::size_t CharacterSize(const char* text, std::size_t left) {
    const Form* form = std::find_if(std::begin(kForms), std::end(kForms),
                                    [text](const Form& f) { return IsWithin(*text, f.first, f.last); });
    if (form == std::end(kForms) || form->size > left) {
        return 0;
    }
    for (std::size_t i = 1; i < form->size; ++i) {
        const bool second = i == 1;
        if (!IsWithin(text[i], second ? form->secondFirst : 0x80, second ? form->secondLast : 0xBF)) {
            return 0;
        }
    }
    return form->size;
}

}  // namespace

bool IsUtf8(const std::string& bytes) {
    std::size_t offset = 0;
    while (offset < bytes.size()) {
        const std::size_t size = CharacterSize(bytes.data() + offset, bytes.size() - offset);
        if (size == 0) {
            return false;
        }
        offset += size;
    }
    return true;
}

}  // namespace host
